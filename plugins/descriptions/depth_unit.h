#pragma once

#include <cstdint>

namespace Zentara::Cameras {

// The unit of a camera's 16-bit depth stands in the upper half of the node's depth flags, so that whoever is handed the
// store knows it.
constexpr std::uint32_t depthUnitShift = 32;

/// Micrometres of one step of depth; 0 when the description does not say.
[[nodiscard]] constexpr std::uint32_t describedDepthUnit(std::uint64_t depthFlags) noexcept {
    return static_cast<std::uint32_t>(depthFlags >> depthUnitShift);
}

} // namespace Zentara::Cameras
