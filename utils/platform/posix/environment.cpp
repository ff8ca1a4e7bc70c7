#include "utils/platform/environment.h"

#include <cerrno>
#include <cstdlib>

namespace Zentara::Utils::Platform {

bool readEnvironment(const std::string& name, std::string& value) {
    const char* text = std::getenv(name.c_str());
    if (!text)
        return false;
    value = text;
    return true;
}

bool writeEnvironment(const std::string& name, const std::string& value) {
    // The C library would see a shorter text; names that are empty or hold a '=' it refuses itself.
    if (name.find('\0') != std::string::npos || value.find('\0') != std::string::npos) {
        errno = EINVAL;
        return false;
    }
    return value.empty() ? unsetenv(name.c_str()) == 0 : setenv(name.c_str(), value.c_str(), 1) == 0;
}

} // namespace Zentara::Utils::Platform
