#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

namespace Zentara::Model {

/// Reads an integer or a float of 1, 2 or 4 bytes, low byte first. The bytes must be there.
template<typename T>
requires std::is_trivially_copyable_v<T>
[[nodiscard]] T loadLittleEndian(const unsigned char* bytes) noexcept {
    static_assert(sizeof(T) <= 4);
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < sizeof(T); ++i)
        bits |= static_cast<std::uint32_t>(bytes[i]) << 8 * i;
    if constexpr (std::is_same_v<T, float>)
        return std::bit_cast<float>(bits);
    else
        return static_cast<T>(bits);
}

/// Writes an integer or a float of 1, 2 or 4 bytes, low byte first. The room must be there.
template<typename T>
requires std::is_trivially_copyable_v<T>
void storeLittleEndian(unsigned char* bytes, T value) noexcept {
    static_assert(sizeof(T) <= 4);
    std::uint32_t bits;
    if constexpr (std::is_same_v<T, float>)
        bits = std::bit_cast<std::uint32_t>(value);
    else
        bits = static_cast<std::uint32_t>(value);
    for (unsigned i = 0; i < sizeof(T); ++i)
        bytes[i] = static_cast<unsigned char>(bits >> 8 * i);
}

} // namespace Zentara::Model
