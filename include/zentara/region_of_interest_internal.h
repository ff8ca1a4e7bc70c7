#pragma once

#include <cstdint>

namespace Zentara {

/// A rectangle of the sensor, in pixels from its upper left corner.
struct RegionOfInterestInternal {
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    friend bool operator==(const RegionOfInterestInternal&, const RegionOfInterestInternal&) = default;
};

} // namespace Zentara
