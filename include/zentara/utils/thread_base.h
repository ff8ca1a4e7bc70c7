#pragma once

#include <zentara/export.h>

#include <cstdint>
#include <memory>

namespace Zentara::Utils::Threading {

/// What a thread is doing.
enum ThreadState : std::int32_t {
    ThreadState_SUSPENDED = 0, ///< created suspended and not resumed yet, or parked by suspend()
    ThreadState_RUNNING = 1,   ///< executing its function
    ThreadState_FINISHED = 2,  ///< its function has returned
};

///      startSuspended      resume()
///     ----------------> Suspended -------> Running --------------------> Finished
///                           ^                |      the function returns
///                           +-- suspend() ---+
///
/// A system thread that runs one function. Safe, save for the destructor.
///
/// A failure to create the thread or to wait for it ends the process by abort().
class ZENTARA_API ThreadBase final {
public:
    /// Starts the thread.
    /// \param function runs on the new thread and must let no exception out.
    /// \param argument passed to the function; must live as long as the function needs it.
    /// \param startSuspended true to hold the thread back until resume().
    ThreadBase(void (*function)(void*), void* argument, bool startSuspended);

    /// Detaches a thread that was not joined; it runs on by itself. A thread that was never resumed ends
    /// without running its function, and one that is parked goes on, for nobody could resume it any more;
    /// from then on its suspend() does nothing.
    ~ThreadBase();
    ThreadBase(const ThreadBase&) = delete;
    ThreadBase& operator=(const ThreadBase&) = delete;

    /// Waits without limit until the thread has ended. Any number of calls, from any threads; on the thread
    /// itself it returns at once.
    void join();

    /// Lets a suspended or parked thread go on; does nothing otherwise.
    void resume();

    /// Parks the calling thread until resume(). Does nothing on a thread that no ThreadBase started.
    static void suspend();

    [[nodiscard]] ThreadState getState() const;

    /// Holds the calling thread back on the monotonic clock; 0xFFFFFFFF is for ever.
    static void sleep(unsigned long milliseconds);

    /// The system's identifier of the calling thread, never 0.
    [[nodiscard]] static unsigned long getCurrentThreadId() noexcept;

    /// Names the calling thread for debuggers: on Windows by the debugger's notification exception, which is
    /// invisible otherwise; on Linux by the thread's name, cut to 15 bytes. Null is ignored.
    static void setDebuggerThreadName(const char* name) noexcept;

private:
    struct Impl;
    /// Shared with the thread, which may outlive this object.
    std::shared_ptr<Impl> impl;
};

} // namespace Zentara::Utils::Threading
