#pragma once

#include <zentara/export.h>

namespace Zentara::Utils::Platform {
class Event;
}

namespace Zentara::Utils::Threading {

///             set()
///     Unset ---------> Set         set() of one that is set: nothing changes
///       ^               |
///       +---------------+
///         a wait passes, or isSet() looks
///
/// An event that one wait consumes: set() lets exactly one wait pass, now or later, and further sets before
/// that wait add nothing. The set that a sleeping thread is being woken by is that thread's: one more stays for the
/// next wait. Created unset. Safe; a failure of the system underneath ends the process by
/// abort().
///
/// set() touches nothing once a waiter could have returned, so the waiter may destroy the signal right away.
class ZENTARA_API Signal final {
public:
    Signal();
    ~Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    /// Lets one wait pass. Never blocks, and makes no system call when nobody waits on Linux.
    void set() noexcept;

    /// Waits for set() without limit.
    void wait() noexcept;

    /// Waits for set() at most that long on the monotonic clock; 0 only looks, 0xFFFFFFFF waits without
    /// limit. \return 0 when the signal was set, -1 once the time has passed.
    int timedWait(unsigned long milliseconds) noexcept;

    /// True when the signal is set; consumes it, so the next call is false.
    bool isSet() noexcept;

private:
    Platform::Event* event; ///< owned
};

} // namespace Zentara::Utils::Threading
