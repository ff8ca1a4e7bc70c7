#pragma once

#include "utils/platform/owned.h"

namespace Zentara::Utils::Platform {

/// Waits run on the monotonic clock and go on when a signal interrupts them. This value means no limit.
inline constexpr unsigned long infiniteWait = 0xFFFFFFFF;

/// An event that threads wait for. A failure of the system ends the process by abort().
/// set() touches nothing once a waiter could have returned, which may destroy the event at once.
class Event {
public:
    enum class Reset {
        automatic, ///< one wait consumes the event; with threads waiting, each set() lets one more pass, and one
                   ///< beyond them stays
        manual,    ///< lets every wait pass until reset()
    };

    /// Unset, never null.
    static Event* create(Reset reset) noexcept;
    static void destroy(Event* event) noexcept;

    void set() noexcept;
    void reset() noexcept;

    /// True when the event was set, false once the time has passed; 0 only looks.
    bool wait(unsigned long milliseconds) noexcept;

    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

protected:
    Event() = default;
    ~Event() = default;
};

} // namespace Zentara::Utils::Platform
