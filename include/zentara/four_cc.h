#pragma once

#include <cstdint>

namespace Zentara {

/// The pixel format of a stream, as its description tells it. All 0: not told. A copyable value. Separate.
struct FourCC {
    std::uint32_t code = 0;         ///< the four characters of its name, the first one in the low byte
    std::uint8_t bitsPerPixel = 0;  ///< 0 for a compressed format
    std::uint32_t bytesPerLine = 0; ///< 0: lines follow each other without padding

    friend bool operator==(const FourCC&, const FourCC&) = default;
};

/// The code that is written as four characters, for example `fourCCCode('Y', '1', '6', ' ')`. Safe.
[[nodiscard]] constexpr std::uint32_t fourCCCode(char first, char second, char third, char fourth) noexcept {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(first)) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(second)) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(third)) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(fourth)) << 24;
}

} // namespace Zentara
