#pragma once

#include <chrono>

namespace Zentara::IO {

/// What a chip waits on between transfers, so that a test may do without the waiting.
class ChipClock {
public:
    virtual ~ChipClock() = default;
    /// Returns once that much time has passed.
    virtual void wait(std::chrono::milliseconds time) = 0;

    /// The one that sleeps.
    [[nodiscard]] static ChipClock& system() noexcept;
};

} // namespace Zentara::IO
