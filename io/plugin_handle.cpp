#include "io/plugin_handle.h"

#include <exception>
#include <utility>

#include <zentara/core/guids.h>
#include <zentara/core/plugin.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "io/warning.h"

namespace Zentara::IO {

namespace {

/// The references that creation gave are the handle's.
Core::Plugin* createObject(Core::PluginManager& manager, GUID guid, Core::ImplType type) {
    void* const made = manager.createInstance(guid, type);
    if (!made) {
        // The library's use was counted for an object that does not exist.
        manager.decref(guid);
        PluginHandle::throwNotInstantiated(guid);
    }
    auto* const plugin = static_cast<Core::Plugin*>(made);
    if (!guidEquals(plugin->getGUID(), guid)) {
        // Counted by its own word, it would take uses from another plug-in's library and never give back this one's.
        delete plugin;
        manager.decref(guid);
        PluginHandle::throwNotInstantiated(guid);
    }
    return plugin;
}

} // namespace

PluginHandle::PluginHandle(GUID guid, Core::ImplType type) : manager(Core::PluginManager::instance()) {
    if (!manager)
        throwNotInstantiated(guid);
    try {
        object = createObject(*manager, guid, type);
    } catch (...) {
        release();
        throw;
    }
}

PluginHandle::~PluginHandle() { release(); }

void PluginHandle::release() noexcept {
    try {
        if (Core::Plugin* const last = std::exchange(object, nullptr))
            static_cast<Utils::Refcounted*>(last)->decref();
    } catch (const std::exception& failure) {
        warn(failure.what());
    }
    if (Core::PluginManager* const last = std::exchange(manager, nullptr))
        last->release();
}

void PluginHandle::abandon() noexcept {
    object = nullptr;
    manager = nullptr;
}

void PluginHandle::throwNotInstantiated(GUID guid) {
    throw Plugin::InitializationPluginException(Utils::Format("Couldn't instantiate object %") %
                                                Core::GUID_toString(guid));
}

} // namespace Zentara::IO
