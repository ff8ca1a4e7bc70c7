#pragma once

#include <array>
#include <charconv>
#include <ostream>
#include <string>

namespace Zentara::Tool {

/// Takes whatever becomes a text, a `Format` among them.
inline void printLine(std::ostream& out, const std::string& text) { out << text << '\n'; }

/// "12.25"
[[nodiscard]] inline std::string decimalText(double value, int digits = 2) {
    std::array<char, 400> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits).ptr;
    return {text.data(), end};
}

} // namespace Zentara::Tool
