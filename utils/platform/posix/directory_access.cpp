#include "utils/platform/directory_access.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

bool everybodyMayWrite(const std::string& directory) {
    struct stat status;
    return stat(directory.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0;
}

bool mayReadAndWrite(const std::string& path) {
    return access(path.c_str(), R_OK | W_OK) == 0 || (errno != EACCES && errno != EPERM && errno != EROFS);
}

} // namespace Zentara::Utils::Platform
