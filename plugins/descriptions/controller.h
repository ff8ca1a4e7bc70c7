#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <zentara/hardware_version_internal.h>

namespace Zentara::Cameras {

/// The controllers that a camera can have.
enum class ChipKind { OV0570, VC0258, VC0345 };

/// "OV0570", "VC0258" or "VC0345".
[[nodiscard]] const char* chipName(ChipKind kind) noexcept;
/// The kind of that name in any case; nothing for another text.
[[nodiscard]] std::optional<ChipKind> chipKindFromName(const std::string& name);

// A camera's controller stands in the low byte of its device capabilities, so that whoever is handed the store
// knows it: 1, 2 and 3 in the order of ChipKind, 0 for none.
constexpr std::int32_t controllerBits = 8;

[[nodiscard]] constexpr std::int32_t controllerCode(ChipKind kind) noexcept {
    return static_cast<std::int32_t>(kind) + 1;
}

/// The controller of a camera with these capabilities; nothing for one that is not described so.
[[nodiscard]] constexpr std::optional<ChipKind> describedController(std::int32_t capabilities) noexcept {
    const std::int32_t code = capabilities & 0xFF;
    if (code < controllerCode(ChipKind::OV0570) || code > controllerCode(ChipKind::VC0345))
        return std::nullopt;
    return static_cast<ChipKind>(code - 1);
}

/// The product number under which the list of a camera's modules holds its controller: a parameter back-end sees the
/// list, and no capabilities.
[[nodiscard]] constexpr std::uint32_t controllerProduct(ChipKind kind) noexcept {
    constexpr std::uint32_t products[] = {0x0570, 0x0258, 0x0345};
    return products[static_cast<std::size_t>(kind)];
}

/// The first controller in the list; nothing when it holds none.
[[nodiscard]] constexpr std::optional<ChipKind>
listedController(const HardwareVersionInternal& version) noexcept {
    for (const ModuleIdInternal& module : version.modules) {
        for (const ChipKind kind : {ChipKind::OV0570, ChipKind::VC0258, ChipKind::VC0345}) {
            if (module.productId == controllerProduct(kind))
                return kind;
        }
    }
    return std::nullopt;
}

} // namespace Zentara::Cameras
