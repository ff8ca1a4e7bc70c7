#pragma once

#include <string>

#include <zentara/core/impl_type.h>
#include <zentara/guid.h>

namespace Zentara::Core {
class Plugin;
class PluginManager;
} // namespace Zentara::Core

namespace Zentara::IO {

/// One object of a plug-in, and the plug-in manager that made it: a reference on each. Separate.
class PluginHandle {
public:
    /// \throws Plugin::InitializationPluginException what the manager throws, and "Couldn't instantiate object GUID"
    ///         when there is no object; nothing is held then
    PluginHandle(GUID guid, Core::ImplType type);
    ~PluginHandle();
    PluginHandle(const PluginHandle&) = delete;
    PluginHandle& operator=(const PluginHandle&) = delete;

    /// Null after `release`.
    [[nodiscard]] Core::Plugin* get() const { return object; }

    /// Drops the object, which may unload its library, and then the manager. A second call does nothing.
    void release() noexcept;

    /// Leaves the object and the manager as they are, in the hands of nobody.
    void abandon() noexcept;

    [[noreturn]] static void throwNotInstantiated(GUID guid);

private:
    Core::PluginManager* manager;
    Core::Plugin* object = nullptr;
};

} // namespace Zentara::IO
