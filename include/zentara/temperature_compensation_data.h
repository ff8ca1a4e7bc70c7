#pragma once

#include <cstdint>
#include <vector>

namespace Zentara {

/// The temperature compensation as a calibration carries it: a method and two sets of coefficients, 32-bit
/// words whose meaning the method fixes. Both sets have the same length, at most 255.
struct TemperatureCompensationData {
    std::int32_t kind = 0; ///< the method; 0: none. Its low byte is what is marshalled.
    std::vector<std::int32_t> firstCoefficients;
    std::vector<std::int32_t> secondCoefficients;

    friend bool operator==(const TemperatureCompensationData&, const TemperatureCompensationData&) = default;
};

} // namespace Zentara
