#pragma once

#include <cstdint>

namespace Zentara {

/// The kind of a parameter's value; the parameter's number fixes it.
enum ParameterValueType : std::int32_t {
    ParameterValueType_NONE = 0, ///< no such parameter
    ParameterValueType_FLOAT = 1,
    ParameterValueType_INT = 2,
    ParameterValueType_BOOL = 3,
    ParameterValueType_REGION_OF_INTEREST = 4,
};

} // namespace Zentara
