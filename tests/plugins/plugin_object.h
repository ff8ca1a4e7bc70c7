#pragma once

#include <zentara/core/plugin_manager.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::TestSupport {

/// A new object of a plug-in of that kind; null if it is of another class.
template<typename Interface>
Utils::SmartPtr<Interface> makePlugin(GUID guid) {
    Core::PluginManager* manager = Core::PluginManager::instance();
    auto* object = static_cast<Core::Plugin*>(manager->createInstance(guid, Interface::getImplType()));
    manager->release();
    return Utils::SmartPtr<Interface>::adopt(dynamic_cast<Interface*>(object));
}

} // namespace Zentara::TestSupport
