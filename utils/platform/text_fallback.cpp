#include "utils/platform/text_encoding.h"

namespace Zentara::Utils::Platform {

std::wstring utf8ToWideOrWidened(std::string_view text) {
    std::wstring wide;
    if (!utf8ToWide(text, wide)) {
        wide.reserve(text.size());
        for (char byte : text)
            wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(byte)));
    }
    return wide;
}

std::string wideToUtf8OrNarrowed(std::wstring_view wide) {
    std::string text;
    if (!wideToUtf8(wide, text)) {
        text.reserve(wide.size());
        for (wchar_t character : wide)
            text.push_back(static_cast<char>(character));
    }
    return text;
}

} // namespace Zentara::Utils::Platform
