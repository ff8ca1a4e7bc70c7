#pragma once

#include <string>
#include <string_view>

namespace Zentara::Utils::Platform {

/// UTF-8 to wide: UTF-16 on Windows, UTF-32 elsewhere. False, with the last error set and `wide` untouched,
/// for overlong forms, encoded surrogates, numbers beyond 0x10FFFF and truncated sequences.
bool utf8ToWide(std::string_view text, std::wstring& wide);

/// Wide to UTF-8. False, with the last error set and `text` untouched, for lone surrogates and numbers beyond
/// 0x10FFFF.
bool wideToUtf8(std::wstring_view wide, std::string& text);

/// The same conversions where something must come out: on failure each byte is widened to one character, or
/// each character cut to one byte.
std::wstring utf8ToWideOrWidened(std::string_view text);
std::string wideToUtf8OrNarrowed(std::wstring_view wide);

} // namespace Zentara::Utils::Platform
