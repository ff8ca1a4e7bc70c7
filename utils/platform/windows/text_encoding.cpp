#include "utils/platform/text_encoding.h"

#include <climits>

#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

/// The system counts in `int`.
bool isTooLong(std::size_t size) noexcept {
    if (size <= INT_MAX)
        return false;
    SetLastError(ERROR_INVALID_PARAMETER);
    return true;
}

} // namespace

// An empty text is an error to both functions of the system.

bool utf8ToWide(std::string_view text, std::wstring& wide) {
    if (isTooLong(text.size()))
        return false;
    const int length = static_cast<int>(text.size());
    const int needed =
        length == 0 ? 0 : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
    if (needed == 0 && length != 0)
        return false;
    wide.resize(static_cast<std::size_t>(needed));
    if (length != 0)
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), needed);
    return true;
}

bool wideToUtf8(std::wstring_view wide, std::string& text) {
    if (isTooLong(wide.size()))
        return false;
    const int length = static_cast<int>(wide.size());
    const int needed = length == 0 ? 0
                                   : WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide.data(), length,
                                                         nullptr, 0, nullptr, nullptr);
    if (needed == 0 && length != 0)
        return false;
    text.resize(static_cast<std::size_t>(needed));
    if (length != 0)
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide.data(), length, text.data(), needed, nullptr,
                            nullptr);
    return true;
}

} // namespace Zentara::Utils::Platform
