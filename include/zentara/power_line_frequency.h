#pragma once

#include <cstdint>

namespace Zentara {

/// The mains frequency whose flicker a colour camera suppresses, numbered as the USB Video Class does. The number is
/// part of a mode's name.
enum PowerLineFrequency : std::int32_t {
    PowerLineFrequency_DISABLED = 0, ///< it suppresses none
    PowerLineFrequency_50HZ = 1,
    PowerLineFrequency_60HZ = 2,
    PowerLineFrequency_AUTO = 3, ///< it finds out by itself
};

} // namespace Zentara
