#pragma once

#include <cstdint>

namespace Zentara::Utils::Platform {

constexpr std::uint64_t fnvBasis = 0xCBF29CE484222325;

/// The FNV-1a sum of 64 bits of the characters, on from an earlier one.
template<typename Iterator>
[[nodiscard]] constexpr std::uint64_t fnvSum(Iterator first, Iterator last,
                                             std::uint64_t sum = fnvBasis) noexcept {
    for (; first != last; ++first)
        sum = (sum ^ static_cast<unsigned char>(*first)) * 0x100000001B3;
    return sum;
}

} // namespace Zentara::Utils::Platform
