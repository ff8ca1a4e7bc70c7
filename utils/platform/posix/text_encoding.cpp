#include "utils/platform/text_encoding.h"

#include <cerrno>
#include <cstdint>

#include "utils/platform/utf8.h"

namespace Zentara::Utils::Platform {

namespace {

/// Of a number that is no surrogate and not above 0x10FFFF: six bits a byte from the second one on, the first one tells
/// how many follow.
void encode(std::uint32_t code, std::string& text) {
    const auto append = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        append(code);
        return;
    }
    if (code < 0x800) {
        append(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            append(0xE0 | code >> 12);
        } else {
            append(0xF0 | code >> 18);
            append(0x80 | (code >> 12 & 0x3F));
        }
        append(0x80 | (code >> 6 & 0x3F));
    }
    append(0x80 | (code & 0x3F));
}

} // namespace

bool utf8ToWide(std::string_view text, std::wstring& wide) {
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        std::uint32_t code = 0;
        if (!decodeUtf8(text, position, code)) {
            errno = EILSEQ;
            return false;
        }
        result.push_back(static_cast<wchar_t>(code));
    }
    wide = std::move(result);
    return true;
}

bool wideToUtf8(std::wstring_view wide, std::string& text) {
    std::string result;
    result.reserve(wide.size());
    for (wchar_t character : wide) {
        // NOLINTNEXTLINE(bugprone-signed-char-misuse): it has 32 bits
        const auto code = static_cast<std::uint32_t>(character);
        if (code > largestCodePoint || isSurrogate(code)) {
            errno = EILSEQ;
            return false;
        }
        encode(code, result);
    }
    text = std::move(result);
    return true;
}

} // namespace Zentara::Utils::Platform
