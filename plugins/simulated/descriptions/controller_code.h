#pragma once

#include <cstdint>
#include <optional>

#include "plugins/simulated/controllers/controller_model.h"

namespace Zentara::Simulated {

// A camera's controller stands in the low byte of its device capabilities, so that whoever is handed the store
// knows it: 1, 2 and 3 in the order of ChipKind, 0 for none.
constexpr std::int32_t controllerBits = 8;

[[nodiscard]] constexpr std::int32_t controllerCode(ChipKind kind) noexcept {
    return static_cast<std::int32_t>(kind) + 1;
}

/// The controller of a camera with these capabilities; nothing for one that is not a simulated camera.
[[nodiscard]] constexpr std::optional<ChipKind> describedController(std::int32_t capabilities) noexcept {
    const std::int32_t code = capabilities & 0xFF;
    if (code < controllerCode(ChipKind::OV0570) || code > controllerCode(ChipKind::VC0345))
        return std::nullopt;
    return static_cast<ChipKind>(code - 1);
}

/// The ROM element under which a camera's description keeps where the storage of its calibration lies.
constexpr std::uint64_t storageElement = 1;

} // namespace Zentara::Simulated
