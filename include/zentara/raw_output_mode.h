#pragma once

#include <cstdint>

namespace Zentara {

/// What a depth camera puts into its raw frames.
enum RawOutputMode : std::int32_t {
    RawOutputMode_PHASE = 0,                ///< one phase value a pixel
    RawOutputMode_PHASE_AND_CONFIDENCE = 1, ///< phase, and how much light stands behind it
    RawOutputMode_TAPS = 2,                 ///< the sensor's measurements before any phase is computed
};

} // namespace Zentara
