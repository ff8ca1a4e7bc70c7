#pragma once

#include <cstdint>

namespace Zentara {

/// A rectangle of the sensor, in pixels from its upper left corner. What a camera takes is asked for by the range of
/// parameter 13. Crosses the boundary to parameter back-ends as four words in this order; in a system state each is
/// cut to 16 bits. All 0: no region. A copyable value. Separate.
struct RegionOfInterestInternal {
    std::uint32_t x = 0;      ///< its first column
    std::uint32_t y = 0;      ///< its first row
    std::uint32_t width = 0;  ///< columns
    std::uint32_t height = 0; ///< rows

    friend bool operator==(const RegionOfInterestInternal&, const RegionOfInterestInternal&) = default;
};

} // namespace Zentara
