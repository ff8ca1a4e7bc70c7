#pragma once

#include <cstdint>

namespace Zentara {

/// Where one piece of calibration lies in a camera's ROM. A copyable value. Separate.
struct ROMElement {
    std::uint32_t address = 0; ///< of its first byte, counted from the start of that memory
    std::uint32_t size = 0;    ///< bytes

    friend bool operator==(const ROMElement&, const ROMElement&) = default;
};

/// The id under which a descriptor store keeps where the storage of a camera's calibration lies: in the memory that
/// `IO::CameraChip::readConfiguration` reads.
inline constexpr std::uint64_t storageROMElement = 1;

} // namespace Zentara
