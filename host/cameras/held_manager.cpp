#include "host/cameras/held_manager.h"

#include <zentara/host/failure.h>

namespace Zentara::Host {
namespace {

/// A start that throws stays counted, and while it is nothing is scanned: it is given back through the one that ended.
Core::PluginManager* start() {
    try {
        return Core::PluginManager::instance();
    } catch (...) {
        if (Core::PluginManager* const ended = Core::PluginManager::instance()) {
            ended->release();
            ended->release();
        }
        throw;
    }
}

} // namespace

HeldManager::HeldManager() : manager(start()) {
    if (manager == nullptr)
        throw Failure(Failure::NoPlugin, "there is no plug-in manager");
}

HeldManager::~HeldManager() { manager->release(); }

} // namespace Zentara::Host
