#include <zentara/core/plugin_manager.h>

#include <memory>
#include <utility>

#include <zentara/core/guids.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/core/shared_library.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>

#include "core/guid_map.h"
#include "utils/immortal.h"

namespace Zentara::Core {

using Utils::Threading::AutoLock;

namespace {

/// Never destroyed: a plug-in object may be the last to go, after the static objects of this library.
constinit Utils::Immortal<Utils::Threading::Mutex> lockStorage;

} // namespace

/// Written by the constructor only.
struct PluginManager::Impl {
    /// A library whose objects still live stays, held by its uses.
    struct Release {
        void operator()(SharedLibrary* library) const { library->release(); }
    };
    using Library = std::unique_ptr<SharedLibrary, Release>;

    GuidMap<Library> libraries;
};

PluginManager* PluginManager::_instance = nullptr;
Utils::Threading::Mutex& PluginManager::_lock = lockStorage.object;
constinit Utils::AtomicInt PluginManager::_refcount{0};

PluginManager::PluginManager() : impl(std::make_unique<Impl>()) { loadImplGUIDs(); }

PluginManager::~PluginManager() = default;

PluginManager* PluginManager::instance() {
    const AutoLock hold(_lock);
    // When the constructor throws, count and pointer stay as they are now.
    if (_refcount.incrementAndTest()) {
        PluginManager* manager = new PluginManager();
        delete _instance;
        _instance = manager;
    }
    return _instance;
}

PluginManager* PluginManager::acquire() {
    // The lock is re-entrant. It is held over both steps, else the manager could end between them.
    const AutoLock hold(_lock);
    PluginManager* manager = instance();
    return manager && manager->impl ? manager : nullptr;
}

void PluginManager::releaseReference() {
    const AutoLock hold(_lock);
    // The shell stays: plug-in objects that outlive the host's references still call into it.
    if (_refcount.decrementAndTest() && _instance)
        _instance->impl.reset();
}

void PluginManager::incref() { _refcount.increment(); }

void PluginManager::release() { releaseReference(); }

std::vector<GUID> PluginManager::getGUIDs(ImplType type) {
    std::vector<GUID> guids;
    if (!impl)
        return guids;
    for (const auto& entry : impl->libraries) {
        if (entry.second->getImplType() == type)
            guids.push_back(entry.first);
    }
    return guids;
}

// Without the manager's lock: the factory runs under its library's, which comes first in the order of locks, and the
// object's constructor calls back. What is registered does not change while the caller's reference holds the manager.
void* PluginManager::createInstance(GUID guid, ImplType type) {
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    SharedLibrary* library = getSharedLibrary(guid);
    if (library->getImplType() != type)
        throw Zentara::Plugin::InitializationPluginException("ImplType mismatch");
    return library->createInstance();
}

void PluginManager::incref(GUID guid) { getSharedLibrary(guid)->incref(); }

void PluginManager::decref(GUID guid) { getSharedLibrary(guid)->decref(); }

SharedLibrary* PluginManager::getSharedLibrary(GUID guid) {
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    checkGUID(guid);
    return impl->libraries.find(guid)->second.get();
}

void PluginManager::checkGUID(GUID guid) const {
    if (!impl || !impl->libraries.contains(guid))
        throw Zentara::Plugin::InitializationPluginException(Utils::Format("couldn't find GUID %") %
                                                             GUID_toString(guid));
}

void PluginManager::loadImplGUIDs() {
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    for (const PluginProbe& probe : probePluginDirectory(getPluginDirectory())) {
        if (!probe.accepted())
            continue;
        Impl::Library library(new SharedLibrary(probe.path, static_cast<ImplType>(probe.type), probe.guid));
        impl->libraries.emplace(probe.guid, std::move(library));
    }
}

} // namespace Zentara::Core
