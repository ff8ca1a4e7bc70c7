#pragma once

#include <cstdint>

namespace Zentara {

/// What identifies a camera's interface on the bus, and with it the description that belongs to it: a description holds
/// when all four are equal. Crosses the boundary to parameter back-ends as four words in this order. A copyable value.
/// Separate.
struct HardwareIDs {
    std::uint32_t vendorId = 0;        ///< who made the camera
    std::uint32_t productId = 0;       ///< which model of his it is
    std::uint32_t revision = 0;        ///< of the model
    std::uint32_t interfaceNumber = 0; ///< which of its interfaces: one for each node

    friend bool operator==(const HardwareIDs&, const HardwareIDs&) = default;
};

static_assert(sizeof(HardwareIDs) == 16, "back-ends read four words");

} // namespace Zentara
