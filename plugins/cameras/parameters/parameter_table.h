#pragma once

#include <cstdint>
#include <vector>

#include <zentara/access_mode.h>
#include <zentara/parameter_type.h>
#include <zentara/parameter_value_type.h>
#include <zentara/unit_type.h>

namespace Zentara::Cameras {

/// A parameter of the described cameras. A value is kept in one 16-bit register as a multiple of the step.
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

} // namespace Zentara::Cameras
