#pragma once

#include "utils/platform/owned.h"

namespace Zentara::Utils::Platform {

/// A thread of the system.
class Thread {
public:
    /// Starts `function(argument)` on a new thread. Never null: a failure of the system ends the process by
    /// abort().
    static Thread* create(void (*function)(void*), void* argument) noexcept;

    /// Lets go of the thread: one that was not joined runs on by itself.
    static void destroy(Thread* thread) noexcept;

    /// Waits without limit until the thread has ended. At most one call, and not on the thread itself; a
    /// failed wait ends the process by abort().
    void join() noexcept;

    /// True when called on this very thread.
    [[nodiscard]] bool isCurrent() const noexcept;

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

protected:
    Thread() = default;
    ~Thread() = default;
};

/// The system's identifier of the calling thread: unique in the system and never 0.
[[nodiscard]] unsigned long currentThreadId() noexcept;

/// The system's identifier of this process.
[[nodiscard]] unsigned long currentProcessId() noexcept;

/// Holds the calling thread back on the monotonic clock; infiniteWait is for ever.
void sleepMilliseconds(unsigned long milliseconds) noexcept;

/// Shows the calling thread under this name in debuggers, possibly shortened.
void nameCurrentThread(const char* name) noexcept;

} // namespace Zentara::Utils::Platform
