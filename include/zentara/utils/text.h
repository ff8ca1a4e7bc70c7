#pragma once

#include <string>
#include <vector>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Texts are narrow UTF-8 strings. Everything here is safe.

/// The decimal number in `text`; leading white space and a sign are accepted. Values beyond 32 bits are
/// truncated to their low 32 bits. \throws UFormatException "string is empty", or "invalid number" when the
/// text is not consumed to its end.
ZENTARA_API int parseInt(const std::string& text);

/// UTF-8 to wide: UTF-16 on Windows, UTF-32 elsewhere. Invalid bytes are logged as a warning, and then each
/// byte of the text is widened to one character.
ZENTARA_API std::wstring stringToWString(const std::string& text);

/// Wide to UTF-8. Lone surrogates and other invalid characters are logged as a warning, and then each
/// character of the text is cut to one byte.
ZENTARA_API std::string wstringToString(const std::wstring& text);

/// The text cut at its last "\r\n", else at its last line feed, else at its last carriage return, even when
/// text follows; unchanged when it has no line end.
ZENTARA_API std::string removeNewline(const std::string& text);
ZENTARA_API std::wstring removeNewline(const std::wstring& text);

/// The pieces between the separators, empty ones included, so that joining them gives the text again.
ZENTARA_API std::vector<std::string> split(const std::string& text, char separator);
/// At most `count` pieces, the last of which is the whole rest; a count below 1 sets no limit.
ZENTARA_API std::vector<std::string> split(const std::string& text, char separator, int count);
ZENTARA_API std::string join(const std::vector<std::string>& pieces, const std::string& separator);

/// ASCII letters only; every other byte stays as it is.
ZENTARA_API std::string toLower(const std::string& text);
ZENTARA_API std::string toUpper(const std::string& text);

/// The text without the prefix, or unchanged if it does not begin with it.
ZENTARA_API std::string removePrefix(const std::string& text, const std::string& prefix);

/// The greatest common divisor, 0 or more; 0 only for two zeros. The one that an int cannot hold, 2^31 for the
/// smallest int with itself or with 0, comes out as the smallest int.
ZENTARA_API int gcd(int left, int right);

} // namespace Zentara::Utils
