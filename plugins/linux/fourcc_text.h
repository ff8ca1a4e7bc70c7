#pragma once

#include <cstdint>
#include <string>

namespace Zentara::Linux {

/// A pixel format's four characters, in quotes: "'YUYV'"; those that cannot be shown as dots.
[[nodiscard]] inline std::string fourCCText(std::uint32_t code) {
    std::string text = "'";
    for (int shift = 0; shift < 32; shift += 8) {
        const char letter = static_cast<char>(code >> shift & 0x7F);
        text += letter >= ' ' && letter <= '~' ? letter : '.';
    }
    return text + "'";
}

} // namespace Zentara::Linux
