#include "utils/platform/directory_access.h"

#include <sys/stat.h>

namespace Zentara::Utils::Platform {

bool everybodyMayWrite(const std::string& directory) {
    struct stat status;
    return stat(directory.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0;
}

} // namespace Zentara::Utils::Platform
