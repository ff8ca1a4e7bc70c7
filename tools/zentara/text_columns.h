#pragma once

#include <cstddef>
#include <string>

namespace Zentara::Tool {

/// Fills a text up with blanks to a width in characters, not in bytes; a longer one gets one blank.
[[nodiscard]] inline std::string padded(std::string text, std::size_t width) {
    std::size_t letters = 0;
    for (const char byte : text)
        letters += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; // not the rest of a character
    return text.append(letters < width ? width - letters : 1, ' ');
}

} // namespace Zentara::Tool
