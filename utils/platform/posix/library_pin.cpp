#include "utils/platform/library_pin.h"

#include <dlfcn.h>

namespace Zentara::Utils::Platform {

bool pinThisLibrary() noexcept {
    Dl_info self{};
    if (dladdr(reinterpret_cast<const void*>(&pinThisLibrary), &self) == 0 || !self.dli_fname)
        return false;
    // The handle is kept on purpose. A program has no library of its own name and is never unloaded anyway.
    return dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE) != nullptr;
}

} // namespace Zentara::Utils::Platform
