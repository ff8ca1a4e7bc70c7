#pragma once

#include <cstdint>
#include <vector>

#include <zentara/access_mode.h>
#include <zentara/parameter_type.h>
#include <zentara/parameter_value_type.h>
#include <zentara/unit_type.h>

namespace Zentara::Simulated {

/// A parameter of the simulated cameras. A value is kept in one 16-bit register as a multiple of the step.
struct Parameter {
    ParameterType number;
    const char* name; ///< for people
    ParameterValueType type;
    UnitType unit;
    AccessMode access;
    double minimum;
    double maximum;
    double step;
    double start;                ///< what the camera begins with
    std::vector<double> choices; ///< if not empty, the only values
};

/// Null for a number that the cameras do not have.
[[nodiscard]] const Parameter* findParameter(ParameterType number);

/// All of them, in the order of their numbers.
[[nodiscard]] const std::vector<Parameter>& allParameters();

/// The register that holds a parameter's value. The region takes four of them.
[[nodiscard]] constexpr std::uint8_t registerOf(ParameterType number) {
    return number == ParameterType_REGION_OF_INTEREST ? 0x60 : static_cast<std::uint8_t>(0x50 + number);
}

/// Holds `signature` once the registers have their starting values.
constexpr std::uint8_t signatureRegister = 0x6F;
constexpr std::uint16_t signature = 0x5A17;

constexpr std::uint32_t sensorWidth = 320;
constexpr std::uint32_t sensorHeight = 240;

} // namespace Zentara::Simulated
