#pragma once

#include <zentara/core/plugin_manager.h>

namespace Zentara::Host {

/// A reference to the plug-in manager for one scope. Separate.
class HeldManager final {
public:
    /// \throws Failure (NoPlugin) when there is none, and what its start throws: the next one starts it anew
    HeldManager();
    ~HeldManager();
    HeldManager(const HeldManager&) = delete;
    HeldManager& operator=(const HeldManager&) = delete;

    Core::PluginManager* operator->() const noexcept { return manager; }

private:
    Core::PluginManager* const manager;
};

} // namespace Zentara::Host
