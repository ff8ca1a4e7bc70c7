#pragma once

#include <cstddef>
#include <iomanip>
#include <sstream>
#include <string>

namespace Zentara::Tool {

/// The width of a text in characters, not in bytes.
[[nodiscard]] inline std::size_t lettersOf(const std::string& text) {
    std::size_t letters = 0;
    for (const char byte : text)
        letters += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; // not the rest of a character
    return letters;
}

/// Fills a text up with blanks to a width; a longer one gets one blank.
[[nodiscard]] inline std::string padded(std::string text, std::size_t width) {
    const std::size_t letters = lettersOf(text);
    return text.append(letters < width ? width - letters : 1, ' ');
}

/// A number with so many digits after the point.
[[nodiscard]] inline std::string fixed(double value, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

} // namespace Zentara::Tool
