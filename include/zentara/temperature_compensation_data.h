#pragma once

#include <cstdint>
#include <vector>

namespace Zentara {

/// The temperature compensation as a calibration carries it: a method and two sets of coefficients, 32-bit
/// words whose meaning the method fixes: the library carries them and does not interpret them. Both sets have the same
/// length, at most 255. Not the record of the flash, which is `ROM::TemperatureCompensationData`. A copyable value.
/// Separate.
struct TemperatureCompensationData {
    std::int32_t kind = 0;                       ///< the method; 0: none. Its low byte is what is marshalled.
    std::vector<std::int32_t> firstCoefficients; ///< in the method's unit
    std::vector<std::int32_t> secondCoefficients; ///< as many

    friend bool operator==(const TemperatureCompensationData&, const TemperatureCompensationData&) = default;
};

} // namespace Zentara
