#include "plugins/cameras/parameters/parameter_table.h"

namespace Zentara::Cameras {

namespace {

constexpr auto asFloat = ParameterValueType_FLOAT;
constexpr auto asInt = ParameterValueType_INT;
constexpr auto asBool = ParameterValueType_BOOL;
constexpr auto asRegion = ParameterValueType_REGION_OF_INTEREST;
constexpr auto readWrite = AccessMode_READ_WRITE;
constexpr auto readOnly = AccessMode_READ;

} // namespace

const std::vector<Parameter>& allParameters() {
    // clang-format off
    static const std::vector<Parameter> parameters = {
        // number, name, type, unit, access,
        //  minimum, maximum, step, start, choices
        {ParameterType_FLOAT_0, "illumination power", asFloat, UnitType_PERCENT, readWrite,
         0, 100, 0.5, 80, {}},
        {ParameterType_FLOAT_1, "exposure time", asFloat, UnitType_MILLISECOND, readWrite,
         0.1, 10, 0.01, 2, {}},
        {ParameterType_FLOAT_2, "modulation frequency", asFloat, UnitType_MEGAHERTZ, readWrite,
         10, 40, 1, 20, {10, 12, 20, 30, 40}},
        {ParameterType_FLOAT_3, "sensor temperature", asFloat, UnitType_CELSIUS, readOnly,
         0, 120, 0.0625, 36.5, {}},
        {ParameterType_INT_4, "micro-frames", asInt, UnitType_NONE, readWrite,
         1, 16, 1, 4, {1, 2, 4, 8, 16}},
        {ParameterType_FLOAT_5, "confidence threshold", asFloat, UnitType_PERCENT, readWrite,
         0, 100, 1, 5, {}},
        {ParameterType_FLOAT_6, "analogue gain", asFloat, UnitType_DECIBEL, readWrite,
         0, 24, 0.5, 6, {}},
        {ParameterType_BOOL_7, "illumination", asBool, UnitType_NONE, readWrite,
         0, 1, 1, 1, {}},
        {ParameterType_FLOAT_8, "frame rate", asFloat, UnitType_FRAMES_PER_SECOND, readWrite,
         15, 60, 1, 60, {15, 25, 30, 50, 60}},
        {ParameterType_INT_9, "spatial filter", asInt, UnitType_NONE, readWrite,
         0, 7, 1, 2, {}},
        {ParameterType_INT_10, "temporal filter", asInt, UnitType_NONE, readWrite,
         1, 16, 1, 1, {}},
        {ParameterType_RAW_OUTPUT_MODE, "raw output mode", asInt, UnitType_NONE, readWrite,
         0, 2, 1, 1, {0, 1, 2}},
        // Follows the modulation frequency.
        {ParameterType_RANGE, "unambiguous range", asFloat, UnitType_METER, readOnly,
         0, 15, 0, 0, {}},
        {ParameterType_REGION_OF_INTEREST, "region of interest", asRegion, UnitType_PIXEL, readWrite,
         0, 0, 0, 0, {}},
        {ParameterType_BOOL_14, "drift compensation", asBool, UnitType_NONE, readWrite,
         0, 1, 1, 0, {}},
        {ParameterType_INT_15, "strobe delay", asInt, UnitType_MICROSECOND, readWrite,
         0, 65535, 1, 0, {}},
    };
    // clang-format on
    return parameters;
}

const Parameter* findParameter(ParameterType number) {
    for (const Parameter& parameter : allParameters()) {
        if (parameter.number == number)
            return &parameter;
    }
    return nullptr;
}

} // namespace Zentara::Cameras
