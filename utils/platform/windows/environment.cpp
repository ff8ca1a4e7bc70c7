#include "utils/platform/environment.h"

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

bool writeEnvironment(const std::string& name, const std::string& value) {
    // The C library ends the process for a bad name.
    if (name.empty() || name.find('=') != std::string::npos || name.find('\0') != std::string::npos ||
        value.find('\0') != std::string::npos) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return _wputenv_s(utf8ToWideOrWidened(name).c_str(), utf8ToWideOrWidened(value).c_str()) == 0;
}

} // namespace Zentara::Utils::Platform
