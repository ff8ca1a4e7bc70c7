#pragma once

#include <cstdint>

namespace Zentara {

/// The kind of a parameter's value; the parameter's number fixes it (`ParameterInterpreter::getParameterValueType`).
enum ParameterValueType : std::int32_t {
    ParameterValueType_NONE = 0,               ///< no such parameter
    ParameterValueType_FLOAT = 1,              ///< IEEE 754 of 32 bits
    ParameterValueType_INT = 2,                ///< 32 bits, signed
    ParameterValueType_BOOL = 3,               ///< a switch, which has no range
    ParameterValueType_REGION_OF_INTEREST = 4, ///< four words: `RegionOfInterestInternal`
};

} // namespace Zentara
