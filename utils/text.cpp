#include <zentara/utils/text.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

#include <zentara/utils/exceptions.h>

#include "utils/log_warning.h"
#include "utils/message.h"
#include "utils/platform/text_encoding.h"
#include "utils/visible_text.h"

namespace Zentara::Utils {

namespace {

/// Both directions say "to UTF-8". Nothing below logs with these conversions, so a bad text is warned of
/// once.
void warnOfFallback(const std::string& text, const std::string& reason) {
    logWarning(formatMessage("coult not convert string '%' to UTF-8, reverting to ASCII: %",
                             visibleText(text), reason));
}

template<typename Text>
Text withoutNewline(const Text& text) {
    using Character = typename Text::value_type;
    constexpr Character pair[] = {'\r', '\n', '\0'};
    std::size_t end = text.rfind(pair);
    if (end == Text::npos)
        end = text.rfind(Character('\n'));
    if (end == Text::npos)
        end = text.rfind(Character('\r'));
    return text.substr(0, end);
}

} // namespace

int parseInt(const std::string& text) {
    if (text.empty())
        throw UFormatException("string is empty");
    char* end = nullptr;
    const std::int64_t value = std::strtoll(text.c_str(), &end, 10);
    // A zero byte inside the text ends the conversion before the end. What is too great is cut, as the header says.
    if (end == text.c_str() || end != text.c_str() + text.size())
        throw UFormatException("invalid number");
    return static_cast<int>(value);
}

std::wstring stringToWString(const std::string& text) {
    std::wstring wide;
    if (!Platform::utf8ToWide(text, wide)) {
        warnOfFallback(text, getLastError());
        wide = Platform::utf8ToWideOrWidened(text);
    }
    return wide;
}

std::string wstringToString(const std::wstring& wide) {
    std::string text;
    if (!Platform::wideToUtf8(wide, text)) {
        const std::string reason = getLastError(); // before the next call of the system
        text = Platform::wideToUtf8OrNarrowed(wide);
        warnOfFallback(text, reason);
    }
    return text;
}

std::string removeNewline(const std::string& text) { return withoutNewline(text); }

std::wstring removeNewline(const std::wstring& text) { return withoutNewline(text); }

std::vector<std::string> split(const std::string& text, char separator) { return split(text, separator, 0); }

std::vector<std::string> split(const std::string& text, char separator, int count) {
    std::vector<std::string> pieces;
    const std::size_t most = count < 1 ? std::string::npos : static_cast<std::size_t>(count);
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string::npos && pieces.size() + 1 < most;
         end = text.find(separator, start)) {
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

std::string join(const std::vector<std::string>& pieces, const std::string& separator) {
    std::string text;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        text.append(i == 0 ? std::string() : separator).append(pieces[i]);
    return text;
}

std::string toLower(const std::string& text) {
    std::string lower = text;
    std::transform(text.begin(), text.end(), lower.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return lower;
}

std::string toUpper(const std::string& text) {
    std::string upper = text;
    std::transform(text.begin(), text.end(), upper.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
    return upper;
}

std::string removePrefix(const std::string& text, const std::string& prefix) {
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

int gcd(int left, int right) {
    // The smallest int has no positive counterpart of its own size.
    return static_cast<int>(std::gcd<std::int64_t, std::int64_t>(left, right));
}

} // namespace Zentara::Utils
