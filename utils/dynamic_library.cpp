#include <zentara/utils/dynamic_library.h>

#include "utils/platform/dynamic_library.h"

namespace Zentara::Utils {

void* loadSharedLibrary(const std::string& path, int) { return Platform::openLibrary(path); }

void* getFunction(void* library, const std::string& name) {
    return Platform::findSymbol(library, name.c_str());
}

bool freeSharedLibrary(void* library) { return Platform::closeLibrary(library); }

} // namespace Zentara::Utils
