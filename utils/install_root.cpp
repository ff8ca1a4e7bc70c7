#include <zentara/utils/install_root.h>

#include "utils/install_root_lookup.h"
#include "utils/platform/key_store.h"

namespace Zentara::Utils {

int getZTRootDirectory(std::string& root, std::string& suffix) {
    const InstallRoot found = findInstallRoot(Platform::systemKeyStore(), ZENTARA_FALLBACK_ROOT);
    root = found.root;
    suffix = found.suffix;
    return found.readable ? 0 : 1;
}

int getNativeZTRootDirectory(std::string& root) {
    const InstallRoot found = findNativeInstallRoot(Platform::systemKeyStore(), ZENTARA_FALLBACK_ROOT);
    root = found.root;
    return found.readable ? 0 : 1;
}

} // namespace Zentara::Utils
