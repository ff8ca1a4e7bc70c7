#include "utils/platform/dynamic_library.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <vector>

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

constexpr int loadMode = RTLD_NOW | RTLD_LOCAL;

/// Libraries whose initialisation threw. They stay in the process half made, and the loader hands them out as if they
/// were whole. Never destroyed: a library may be opened while the process ends.
struct BrokenLibraries {
    std::mutex lock;
    std::vector<void*> handles; ///< guarded by `lock`; only ever grows
};

BrokenLibraries& brokenLibraries() {
    static BrokenLibraries& libraries = *new BrokenLibraries;
    return libraries;
}

bool isBroken(void* library) {
    BrokenLibraries& broken = brokenLibraries();
    const std::lock_guard<std::mutex> hold(broken.lock);
    return std::find(broken.handles.begin(), broken.handles.end(), library) != broken.handles.end();
}

/// Keeps the loader's handle, which stays valid, as the library never leaves.
void noteBroken(const std::string& path, const char* thrown) {
    if (void* const library = dlopen(path.c_str(), loadMode | RTLD_NOLOAD)) {
        BrokenLibraries& broken = brokenLibraries();
        const std::lock_guard<std::mutex> hold(broken.lock);
        broken.handles.push_back(library);
    }
    keepLoaderError(
        (path + ": its initialisation throws: " + (thrown ? thrown : "unknown exception")).c_str());
}

/// The loader's function as it is: declared not to throw, it lets exceptions of static initialisers through.
using Loader = void* (*)(const char*, int);
const Loader volatile loader = &dlopen;

} // namespace

void* openLibrary(const std::string& path, bool isRegular) {
    // To the loader an empty path means the program itself.
    if (path.empty() || path.find('\0') != std::string::npos) {
        keepLoaderError("invalid library path");
        return nullptr;
    }
    if (!isRegular && !isOpenable(path)) {
        keepLoaderError((path + ": not a regular file").c_str());
        return nullptr;
    }
    try {
        void* const library = loader(path.c_str(), loadMode);
        if (!library) {
            keepLoaderError(dlerror());
        } else if (isBroken(library)) {
            dlclose(library);
            keepLoaderError((path + ": its initialisation threw before").c_str());
            return nullptr;
        }
        return library;
    } catch (const std::exception& thrown) {
        noteBroken(path, thrown.what());
    } catch (...) {
        noteBroken(path, nullptr);
    }
    return nullptr;
}

void* findSymbol(void* library, const char* name) {
    if (!library) {
        keepLoaderError("no library");
        return nullptr;
    }
    void* symbol = dlsym(library, name);
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
