#pragma once

#include <array>
#include <cstdint>

namespace Zentara {

/// Identifies one hardware module of a camera.
struct ModuleIdInternal {
    std::uint32_t vendorId = 0;  ///< who made the module
    std::uint32_t productId = 0; ///< which module it is
    std::uint32_t revision = 0;  ///< the board's revision
    std::uint32_t variant = 0;   ///< how the board is populated

    friend bool operator==(const ModuleIdInternal&, const ModuleIdInternal&) = default;
};

/// The hardware that a camera is made of: the camera itself, up to six modules (unused ones are all 0), and
/// the version of this list. Crosses the boundary to parameter back-ends in this layout.
struct HardwareVersionInternal {
    ModuleIdInternal camera;
    std::array<ModuleIdInternal, 6> modules{};
    std::uint32_t version = 0;

    friend bool operator==(const HardwareVersionInternal&, const HardwareVersionInternal&) = default;
};

static_assert(sizeof(ModuleIdInternal) == 16 && sizeof(HardwareVersionInternal) == 116,
              "back-ends read a block of 16 bytes, six more, and a word");

} // namespace Zentara
