#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Zentara::IO::Chips {

/// Two bytes of a packet as a number, low byte first. The packet's type knows its size.
template<std::size_t Size>
[[nodiscard]] constexpr std::uint16_t getPair(const std::array<std::uint8_t, Size>& packet, std::size_t at) {
    return static_cast<std::uint16_t>(packet[at] | packet[at + 1] << 8);
}

template<std::size_t Size>
constexpr void putPair(std::array<std::uint8_t, Size>& packet, std::size_t at, unsigned value) {
    packet[at] = static_cast<std::uint8_t>(value);
    packet[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

} // namespace Zentara::IO::Chips
