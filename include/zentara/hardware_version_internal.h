#pragma once

#include <array>
#include <cstdint>

namespace Zentara {

/// Identifies one hardware module of a camera. All 0: no module. A copyable value. Separate.
struct ModuleIdInternal {
    std::uint32_t vendorId = 0;  ///< who made the module
    std::uint32_t productId = 0; ///< which module it is
    std::uint32_t revision = 0;  ///< the board's revision
    std::uint32_t variant = 0;   ///< how the board is populated

    friend bool operator==(const ModuleIdInternal&, const ModuleIdInternal&) = default;
};

/// The hardware that a camera is made of: the camera itself, up to six modules (unused ones are all 0), and
/// the version of this list. Crosses the boundary to parameter back-ends in this layout, which learn from it which
/// controller the camera has: its product number stands among the modules. A copyable value. Separate.
struct HardwareVersionInternal {
    ModuleIdInternal camera;                   ///< the camera as a whole
    std::array<ModuleIdInternal, 6> modules{}; ///< in any order
    std::uint32_t version = 0;                 ///< of this list, as its author counts

    friend bool operator==(const HardwareVersionInternal&, const HardwareVersionInternal&) = default;
};

static_assert(sizeof(ModuleIdInternal) == 16 && sizeof(HardwareVersionInternal) == 116,
              "back-ends read a block of 16 bytes, six more, and a word");

} // namespace Zentara
