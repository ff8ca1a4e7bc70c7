#include <zentara/core/plugin.h>

#include <zentara/core/plugin_manager.h>
#include <zentara/core/shared_library.h>

namespace Zentara::Core {

struct Plugin::Impl {
    Impl(ImplType kind, GUID identity) : type(kind), guid(identity), manager(PluginManager::acquire()) {}
    ~Impl() { PluginManager::releaseReference(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    /// Gives a manager reference back when the scope is left, also by an exception.
    struct ManagerGuard {
        explicit ManagerGuard(PluginManager& manager) { manager.incref(); }
        ~ManagerGuard() { PluginManager::releaseReference(); }
        ManagerGuard(const ManagerGuard&) = delete;
        ManagerGuard& operator=(const ManagerGuard&) = delete;
    };

    const ImplType type;
    const GUID guid;
    PluginManager* const manager; ///< null when there was no living one
};

Plugin::Plugin(ImplType type, GUID guid) : impl(std::make_unique<Impl>(type, guid)) {}

Plugin::~Plugin() = default;

GUID Plugin::getGUID() const noexcept { return impl->guid; }

// First the library, which may refuse: an object must never be counted without it.
void Plugin::incref() {
    if (impl->manager)
        impl->manager->incref(impl->guid);
    Refcounted::incref();
}

void Plugin::decref() {
    PluginManager* const manager = impl->manager;
    if (!manager) {
        Refcounted::decref();
        return;
    }
    // The object may be gone after its own count, the library after its count, the manager after the guard.
    const GUID guid = impl->guid;
    const Impl::ManagerGuard hold(*manager);
    Refcounted::decref();
    manager->decref(guid);
}

SharedLibrary* Plugin::getSharedLibrary() const {
    return impl->manager ? impl->manager->getSharedLibrary(impl->guid) : nullptr;
}

} // namespace Zentara::Core
