#pragma once

#include <string>

#include "utils/platform/key_store.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

/// The hive that a store's name means; the local machine's unless it is "HKEY_CURRENT_USER".
HKEY registryHive(const std::string& store) noexcept;

/// The access flag of a view.
REGSAM viewAccess(KeyView view) noexcept;

/// Closes a registry key at the end of its scope.
class RegistryKey {
public:
    RegistryKey() noexcept = default;
    ~RegistryKey() {
        if (handle)
            RegCloseKey(handle);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    HKEY handle = nullptr;
};

} // namespace Zentara::Utils::Platform
