#include "utils/platform/text_encoding.h"

#include <cerrno>
#include <cstdint>

namespace Zentara::Utils::Platform {

namespace {

constexpr std::uint32_t largestCodePoint = 0x10FFFF;

bool isSurrogate(std::uint32_t code) noexcept { return code >= 0xD800 && code <= 0xDFFF; }

/// Bytes that follow a lead byte; -1 for a byte that leads nothing.
int followingBytes(unsigned char lead) noexcept {
    if (lead < 0x80)
        return 0;
    if (lead >= 0xC2 && lead < 0xE0)
        return 1;
    if (lead >= 0xE0 && lead < 0xF0)
        return 2;
    return lead >= 0xF0 && lead < 0xF5 ? 3 : -1;
}

/// Decodes the sequence at `position` and moves behind it; false if it is not valid.
bool decode(std::string_view text, std::size_t& position, std::uint32_t& code) noexcept {
    constexpr std::uint32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[position++]);
    const int following = followingBytes(lead);
    if (following < 0 || static_cast<std::size_t>(following) > text.size() - position)
        return false;
    code = following == 0 ? lead : lead & (0x3Fu >> following);
    for (int i = 0; i < following; ++i) {
        const auto byte = static_cast<unsigned char>(text[position++]);
        if ((byte & 0xC0) != 0x80)
            return false;
        code = code << 6 | (byte & 0x3Fu);
    }
    return code >= smallest[following] && code <= largestCodePoint && !isSurrogate(code);
}

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
        if (!decode(text, position, code)) {
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
