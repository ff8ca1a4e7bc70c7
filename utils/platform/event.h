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
        automatic, ///< one wait consumes the event; with several threads waiting, each set() lets one more
                   ///< pass
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

/// An automatic and a manual event that a thread waits for together: what a condition variable is built from.
class EventPair {
public:
    /// Both unset, never null.
    static EventPair* create() noexcept;
    static void destroy(EventPair* pair) noexcept;

    /// Sets the automatic event: one wait passes.
    void setOne() noexcept;
    /// Sets the manual event: every wait passes until reset().
    void setAll() noexcept;
    /// Unsets both.
    void reset() noexcept;

    /// True when either was set, false once the time has passed; 0 only looks. Consumes the automatic event
    /// only when the manual one is unset.
    bool wait(unsigned long milliseconds) noexcept;

    EventPair(const EventPair&) = delete;
    EventPair& operator=(const EventPair&) = delete;

protected:
    EventPair() = default;
    ~EventPair() = default;
};

} // namespace Zentara::Utils::Platform
