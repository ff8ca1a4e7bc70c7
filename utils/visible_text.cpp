#include "utils/visible_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "utils/platform/utf8.h"

namespace Zentara::Utils {

namespace {

constexpr std::string_view cutMark = " [cut]";

struct CharacterRange {
    std::uint32_t first;
    std::uint32_t last;
};

/// Beyond the control characters. The joiners U+200C and U+200D, which whole scripts are written with, stay.
constexpr CharacterRange hidden[] = {
    {0x061C, 0x061C},   // Arabic letter mark
    {0x200B, 0x200B},   // zero-width space
    {0x200E, 0x200F},   // marks of direction
    {0x2028, 0x202E},   // line and paragraph separator; embedded and overridden direction
    {0x2060, 0x206F},   // invisible operators, isolated direction
    {0xFEFF, 0xFEFF},   // zero-width no-break space
    {0xFFF9, 0xFFFB},   // interlinear annotation
    {0xE0000, 0xE007F}, // tags
};

bool isControl(std::uint32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

bool isHidden(std::uint32_t code) {
    return std::any_of(std::begin(hidden), std::end(hidden),
                       [code](CharacterRange range) { return code >= range.first && code <= range.last; });
}

std::string hexadecimal(std::uint32_t number) {
    std::string digits;
    do
        digits.insert(digits.begin(), "0123456789abcdef"[number & 15]);
    while ((number >>= 4) != 0 || digits.size() < 2);
    return digits;
}

std::string controlText(std::uint32_t code) {
    switch (code) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return code < 0x80 ? "\\x" + hexadecimal(code) : "\\u{" + hexadecimal(code) + '}';
    }
}

/// The visible form of what stands at `position`, behind which it moves: a character, or a byte that begins none.
std::string nextPiece(std::string_view text, std::size_t& position) {
    const std::size_t start = position;
    std::uint32_t code = 0;
    if (!Platform::decodeUtf8(text, position, code)) {
        position = start + 1;
        return "\\x" + hexadecimal(static_cast<unsigned char>(text[start]));
    }
    if (isControl(code))
        return controlText(code);
    if (isHidden(code))
        return "\\u{" + hexadecimal(code) + '}';
    return std::string(text.substr(start, position - start));
}

} // namespace

bool isTreacherous(std::uint32_t character) { return isControl(character) || isHidden(character); }

std::string visibleText(std::string_view text) {
    std::string visible;
    // Where the text would have to end for the mark to find room behind it: known only once it turns out too long.
    std::size_t endBeforeMark = 0;
    for (std::size_t position = 0; position < text.size();) {
        visible += nextPiece(text, position);
        if (visible.size() > longestVisibleText)
            return visible.substr(0, endBeforeMark).append(cutMark);
        if (visible.size() <= longestVisibleText - cutMark.size())
            endBeforeMark = visible.size();
    }
    return visible;
}

} // namespace Zentara::Utils
