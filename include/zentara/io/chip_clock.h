#pragma once

#include <chrono>

namespace Zentara::IO {

/// What a chip waits on between transfers. Chips wait on one that sleeps; a class derived from a chip may hand it
/// another, for example one that measures, or one for a simulated camera, which needs no waiting.
class ChipClock {
public:
    virtual ~ChipClock() = default;

    /// Returns once that much time has passed. Called under the chip's lock.
    virtual void wait(std::chrono::milliseconds time) = 0;
};

} // namespace Zentara::IO
