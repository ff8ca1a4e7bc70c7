#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>

// Stands on the floor of the store and not on that of the class, which knows the store by name only. Without a store
// an enumerator has no node.
namespace Zentara::IO {

using Zentara::Plugin::callPlugin;

NodeType EnumeratorInterface::getNodeType() {
    const auto* const store = getDescriptorStore();
    return callPlugin([&] { return store ? store->getNodeType() : NodeType_NONE; });
}

std::uint64_t EnumeratorInterface::getNodeFlags() {
    const auto* const store = getDescriptorStore();
    return callPlugin([&]() -> std::uint64_t {
        switch (store ? store->getNodeType() : NodeType_NONE) {
        case NodeType_DEPTH:
            return store->getDepthFlags();
        case NodeType_COLOR: // its flags are the first word, a depth node's the second
            return store->getColorFlags();
        default:
            return 0;
        }
    });
}

void EnumeratorInterface::fillEvent(NodeEvent* event) {
    if (!event)
        throw Zentara::Plugin::ArgumentPluginException("fillEvent: no event");
    const auto* const store = getDescriptorStore();
    if (!store)
        return;
    callPlugin([&] {
        const HardwareIDs ids = store->getNodeHardwareIDs();
        event->nodeType = store->getNodeType();
        event->profile = store->getProfile();
        event->name = store->getNodeName();
        event->vendorId = ids.vendorId;
        event->productId = ids.productId;
        event->revision = ids.revision;
        event->interfaceNumber = ids.interfaceNumber;
        event->nodeIndex = store->getNodeIndex();
    });
}

bool EnumeratorInterface::selectNodeDescriptor(NodeEvent* event, Core::Profile profile) {
    if (!event)
        throw Zentara::Plugin::ArgumentPluginException("selectNodeDescriptor: no event");
    auto* const store = getDescriptorStore();
    return store && callPlugin([&] { return store->selectNode(event->hardwareIds(), profile); });
}

} // namespace Zentara::IO
