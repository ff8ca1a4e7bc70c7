#include "utils/platform/dynamic_library.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include "utils/platform/posix/loader_error.h"

namespace Zentara::Utils::Platform {

namespace {

/// The loader opens a path with a '/' as it stands, and a pipe would hold it up; other names it searches for.
bool isOpenable(const std::string& path) noexcept {
    struct stat status;
    return path.find('/') == std::string::npos || stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

} // namespace

void* openLibrary(const std::string& path) {
    // To the loader an empty path means the program itself.
    if (path.empty() || path.find('\0') != std::string::npos) {
        keepLoaderError("invalid library path");
        return nullptr;
    }
    if (!isOpenable(path)) {
        keepLoaderError((path + ": not a regular file").c_str());
        return nullptr;
    }
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        keepLoaderError(dlerror());
    return library;
}

void* findSymbol(void* library, const std::string& name) {
    if (!library) {
        keepLoaderError("no library");
        return nullptr;
    }
    void* symbol = dlsym(library, name.c_str());
    if (!symbol)
        keepLoaderError(dlerror());
    return symbol;
}

bool closeLibrary(void* library) noexcept {
    if (library && dlclose(library) == 0)
        return true;
    keepLoaderError(library ? dlerror() : "no library");
    return false;
}

} // namespace Zentara::Utils::Platform
