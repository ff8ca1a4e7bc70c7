#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Zentara::Utils {

/// What visibleText() gives at most, in bytes.
inline constexpr std::size_t longestVisibleText = 1024;

/// Text from outside (a file's name, an exception of a plug-in or a device, a back-end's last error) made fit for one
/// line of a terminal or a log; ordinary text of any script comes out as it is.
/// What could act on a terminal, end the line or show as something else stands there in a visible form: control
/// characters as \n, \r, \t or \x1b, bytes that are no UTF-8 as \xff, characters that turn the direction of writing,
/// end a line or show nothing as \u{202e}. Text that is too long is cut behind a whole character and ends in " [cut]".
///
/// Whether the character could act on a terminal or shows as something else: visibleText() spells it out.
bool isTreacherous(std::uint32_t character);

/// The library does not export them: whatever else needs it compiles visible_text.cpp in.
std::string visibleText(std::string_view text);

} // namespace Zentara::Utils
