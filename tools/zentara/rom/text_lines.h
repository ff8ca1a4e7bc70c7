#pragma once

#include <array>
#include <charconv>
#include <ostream>
#include <string>

#include "utils/visible_text.h"

namespace Zentara::Tool {

/// Takes whatever becomes a text, a `Format` among them; names of files in it are made fit for a terminal.
inline void printLine(std::ostream& out, const std::string& text) { out << Utils::visibleText(text) << '\n'; }

/// "12.25"
[[nodiscard]] inline std::string decimalText(double value, int digits = 2) {
    std::array<char, 400> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits).ptr;
    return {text.data(), end};
}

} // namespace Zentara::Tool
