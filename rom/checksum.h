#pragma once

#include <cstdint>
#include <span>

#include <zentara/utils/crc.h>

namespace Zentara::ROM {

/// The CRC-16 that protects headers and section data: started at 0, not inverted.
inline std::uint16_t checksum(std::span<const std::uint8_t> bytes) {
    return Utils::Crc16::compute(bytes.data(), static_cast<unsigned int>(bytes.size()), 0);
}

} // namespace Zentara::ROM
