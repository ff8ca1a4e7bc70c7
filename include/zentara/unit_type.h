#pragma once

#include <cstdint>

namespace Zentara {

/// The unit in which a parameter's value counts, its range's bounds and step as well. A back-end may tell another
/// number, which is handed on as it is.
enum UnitType : std::int32_t {
    UnitType_NONE = 0, ///< a plain number, a switch or a choice
    UnitType_PERCENT = 1,
    UnitType_MILLIMETER = 2,
    UnitType_METER = 3,
    UnitType_MICROSECOND = 4,
    UnitType_MILLISECOND = 5,
    UnitType_HERTZ = 6,
    UnitType_MEGAHERTZ = 7,
    UnitType_CELSIUS = 8, ///< degrees of temperature
    UnitType_DEGREE = 9,  ///< of an angle
    UnitType_DECIBEL = 10,
    UnitType_MILLIAMPERE = 11,
    UnitType_PIXEL = 12,
    UnitType_FRAMES_PER_SECOND = 13,
};

} // namespace Zentara
