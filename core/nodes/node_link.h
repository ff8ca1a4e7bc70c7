#pragma once

#include <memory>
#include <utility>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/node_event.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Core {

/// What every node keeps: its device behind a proxy, the store and the host's data.
template<typename Proxy, typename ProcessorData>
struct NodeLink {
    std::unique_ptr<Proxy> proxy;       ///< null unless connected
    DescriptorStoreRO* store = nullptr; ///< not owned
    ProcessorData* data = nullptr;      ///< the host's; not owned

    /// Replaces an earlier link. The proxy's own initialisation is left to the caller, who has access to it.
    Proxy& connect(NodeEvent* event, DescriptorStoreRO* newStore, ProcessorData* newData) {
        if (!event || !newStore)
            throw Zentara::Plugin::ArgumentPluginException(
                event ? "cannot initialize a node: no descriptor store"
                      : "cannot initialize a node: no node event");
        // First what can fail, so that an earlier link stays whole then.
        const GUID guid = Zentara::Plugin::callPlugin([&] { return newStore->getDeviceImplGUID(); });
        auto newProxy = std::make_unique<Proxy>(guid, true);
        disconnect();
        proxy = std::move(newProxy);
        store = newStore;
        data = newData;
        return *proxy;
    }

    void disconnect() {
        proxy.reset();
        store = nullptr;
        data = nullptr;
    }
};

} // namespace Zentara::Core
