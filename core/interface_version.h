#pragma once

namespace Zentara::Core {

/// Reports the version that all interface classes share, 0.1.0. Null pointers are skipped.
inline void reportInterfaceVersion(int* major, int* minor, int* patch) {
    if (major)
        *major = 0;
    if (minor)
        *minor = 1;
    if (patch)
        *patch = 0;
}

} // namespace Zentara::Core
