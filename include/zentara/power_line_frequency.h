#pragma once

#include <cstdint>

namespace Zentara {

/// The mains frequency whose flicker a colour camera suppresses.
enum PowerLineFrequency : std::int32_t {
    PowerLineFrequency_DISABLED = 0,
    PowerLineFrequency_50HZ = 1,
    PowerLineFrequency_60HZ = 2,
    PowerLineFrequency_AUTO = 3,
};

} // namespace Zentara
