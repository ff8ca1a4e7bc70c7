#pragma once

#include <cstdint>

namespace Zentara {

/// The number of a camera parameter. A number fixes the kind of its value (float, integer, boolean or
/// region); what most of them mean is the camera's back-end's affair, so those are named by kind and number. Unit,
/// access and range of each are asked of the `IO::ParameterInterpreter`, names for people of `Core::NodeLabels`.
enum ParameterType : std::int32_t {
    ParameterType_NONE = -1, ///< no parameter
    ParameterType_FLOAT_0 = 0,
    ParameterType_FLOAT_1 = 1,
    ParameterType_FLOAT_2 = 2,
    ParameterType_FLOAT_3 = 3,
    ParameterType_INT_4 = 4,
    ParameterType_FLOAT_5 = 5,
    ParameterType_FLOAT_6 = 6,
    ParameterType_BOOL_7 = 7,
    ParameterType_FLOAT_8 = 8,
    ParameterType_INT_9 = 9,
    ParameterType_INT_10 = 10,
    ParameterType_RAW_OUTPUT_MODE =
        11,                   ///< integer, a `RawOutputMode`: what the camera puts into its raw frames
    ParameterType_RANGE = 12, ///< float, metres: the unambiguous range
    ParameterType_REGION_OF_INTEREST = 13, ///< region, pixels: the part of the sensor that is read out
    ParameterType_BOOL_14 = 14,
    ParameterType_INT_15 = 15,
};

} // namespace Zentara
