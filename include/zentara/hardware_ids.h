#pragma once

#include <cstdint>

namespace Zentara {

/// What identifies a camera's interface on the bus, and with it the description that belongs to it.
/// Crosses the boundary to parameter back-ends as four words in this order.
struct HardwareIDs {
    std::uint32_t vendorId = 0;
    std::uint32_t productId = 0;
    std::uint32_t revision = 0;
    std::uint32_t interfaceNumber = 0;

    friend bool operator==(const HardwareIDs&, const HardwareIDs&) = default;
};

static_assert(sizeof(HardwareIDs) == 16, "back-ends read four words");

} // namespace Zentara
