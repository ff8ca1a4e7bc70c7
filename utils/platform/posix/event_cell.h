#pragma once

#include "utils/platform/posix/deadline.h"

#include <atomic>
#include <cstdint>

namespace Zentara::Utils::Platform {

/// An automatic or a manual event in one atomic word, waited for through a futex. Everything a setter needs
/// to know is in the value that it exchanges, so it does not look at the cell again once a waiter may have
/// freed it; the kernel takes the address of the wake-up as a mere number.
class EventCell final {
public:
    /// Lets one wait pass. There is room for one post for each waiter and one more, which stays for the next to come;
    /// further posts add nothing.
    void post() noexcept;
    /// Lets every wait pass until clear().
    void raise() noexcept;
    /// Takes back what post() or raise() gave and nobody took.
    void clear() noexcept;

    /// False once the time has passed; 0 only looks.
    bool wait(unsigned long milliseconds) noexcept;

private:
    bool take(std::uint64_t departing) noexcept;
    bool leave() noexcept;
    bool sleep(const Deadline& deadline) noexcept;
    void wake(int count) noexcept;

    /// Bits 0 to 30: tokens of post(); bit 31: raised; bits 32 to 63: waiters. Threads sleep on the lower
    /// half while it is 0.
    std::atomic<std::uint64_t> word{0};
};

} // namespace Zentara::Utils::Platform
