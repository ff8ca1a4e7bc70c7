#include "utils/platform/environment.h"

#include <cerrno>
#include <cstdlib>

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

bool readEnvironment(const std::string& name, std::string& value) {
    const wchar_t* text = _wgetenv(utf8ToWideOrWidened(name).c_str());
    if (!text)
        return false;
    value = wideToUtf8OrNarrowed(text);
    return true;
}

namespace {

/// With its zero, in characters.
constexpr std::size_t longestText = 32767;

bool isUsable(const std::wstring& text) {
    return text.size() < longestText && text.find(L'\0') == std::wstring::npos;
}

bool fail(DWORD error) noexcept {
    SetLastError(error);
    return false;
}

} // namespace

bool writeEnvironment(const std::string& name, const std::string& value) {
    const std::wstring wideName = utf8ToWideOrWidened(name);
    const std::wstring wideValue = utf8ToWideOrWidened(value);
    // The C library ends the process for what it cannot take.
    if (name.empty() || name.find('=') != std::string::npos || !isUsable(wideName) || !isUsable(wideValue))
        return fail(ERROR_INVALID_PARAMETER);
    switch (_wputenv_s(wideName.c_str(), wideValue.c_str())) {
    case 0:
        return true;
    case ENOMEM:
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    default:
        // It answers by a code of its own and need not have touched the last error.
        return fail(ERROR_INVALID_PARAMETER);
    }
}

} // namespace Zentara::Utils::Platform
