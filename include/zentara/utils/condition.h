#pragma once

#include <zentara/export.h>
#include <zentara/utils/mutex.h>

#include <memory>

namespace Zentara::Utils::Threading {

/// A condition variable over a mutex of either kind, which it borrows: the mutex must outlive it. Safe.
///
/// A waiter holds the mutex exactly once, calls wait() in a loop around its predicate (a wake-up may come
/// without its cause), and holds the mutex again afterwards. A notification reaches those who wait at that
/// moment; with nobody waiting it is forgotten.
class ZENTARA_API Condition final {
public:
    explicit Condition(Mutex* mutex);
    explicit Condition(RecursiveMutex* mutex);
    /// Nobody may be waiting.
    ~Condition();
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    /// Acquires the associated mutex.
    void lock() noexcept;
    /// Releases the associated mutex.
    void unlock() noexcept;

    /// Releases the mutex, waits for a notification without limit, and acquires the mutex again.
    void wait() noexcept;

    /// wait() with a limit on the monotonic clock; 0xFFFFFFFF is none. The time to acquire the mutex again
    /// comes on top.
    /// \return 0 when notified, -1 once the time has passed.
    int timedWait(unsigned long milliseconds) noexcept;

    /// Wakes the one who has waited longest.
    /// \param takeMutex true to hold the associated mutex meanwhile, for callers that do not hold it already.
    void notify(bool takeMutex) noexcept;

    /// Wakes everyone who waits now.
    void notifyAll() noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl; ///< the waiters, and which mutex it borrows
};

} // namespace Zentara::Utils::Threading
