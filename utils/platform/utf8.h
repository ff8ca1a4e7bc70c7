#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Zentara::Utils::Platform {

inline constexpr std::uint32_t largestCodePoint = 0x10FFFF;

constexpr bool isSurrogate(std::uint32_t code) noexcept { return code >= 0xD800 && code <= 0xDFFF; }

/// Decodes the UTF-8 sequence at `position`, which is inside the text, and moves behind it. False, and `position`
/// somewhere behind where it was, for overlong forms, encoded surrogates, numbers beyond 0x10FFFF and truncated
/// sequences.
constexpr bool decodeUtf8(std::string_view text, std::size_t& position, std::uint32_t& code) noexcept {
    constexpr std::uint32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[position++]);
    if ((lead >= 0x80 && lead < 0xC2) || lead >= 0xF5)
        return false;
    const std::size_t following = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (following > text.size() - position)
        return false;
    code = following == 0 ? lead : lead & (0x3Fu >> following);
    for (std::size_t i = 0; i < following; ++i) {
        const auto byte = static_cast<unsigned char>(text[position++]);
        if ((byte & 0xC0) != 0x80)
            return false;
        code = code << 6 | (byte & 0x3Fu);
    }
    return code >= smallest[following] && code <= largestCodePoint && !isSurrogate(code);
}

} // namespace Zentara::Utils::Platform
