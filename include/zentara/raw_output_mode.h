#pragma once

#include <cstdint>

namespace Zentara {

/// What a depth camera puts into its raw frames: parameter 11. A phase counts 65,536 to a turn; the unit of confidence,
/// and how many taps there are, is the camera's affair.
enum RawOutputMode : std::int32_t {
    RawOutputMode_PHASE = 0,                ///< one phase value a pixel
    RawOutputMode_PHASE_AND_CONFIDENCE = 1, ///< phase, and how much light stands behind it
    RawOutputMode_TAPS = 2,                 ///< the sensor's measurements before any phase is computed
};

} // namespace Zentara
