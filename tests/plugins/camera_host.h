#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/read_buffer_status.h>
#include <zentara/utils/smart_ptr.h>

#include "plugins/cameras/plugin_guids.h"
#include "plugins/descriptions/wire.h"
#include "plugins/simulated/plugin_guids.h"
#include "plugins/simulated/simulated_bus.h"
#include "support/camera_bus.h"
#include "support/failure.h"

namespace Zentara::TestSupport {

/// A new object of a plug-in of that kind; null if it is of another class.
template<typename Interface>
Utils::SmartPtr<Interface> makePlugin(GUID guid) {
    Core::PluginManager* manager = Core::PluginManager::instance();
    auto* object = static_cast<Core::Plugin*>(manager->createInstance(guid, Interface::getImplType()));
    manager->release();
    return Utils::SmartPtr<Interface>::adopt(dynamic_cast<Interface*>(object));
}

/// What readBuffer of a node or device gave.
struct Frame {
    ReadBufferStatus status = ReadBufferStatus_OK;
    std::vector<std::uint8_t> bytes;
    std::int64_t micros = 0;
    int length = 0;

    [[nodiscard]] std::vector<std::uint16_t> plane(std::size_t offset) const {
        std::vector<std::uint16_t> values(Cameras::pixelCount);
        std::memcpy(values.data(), bytes.data() + offset, values.size() * sizeof values[0]);
        return values;
    }
};

template<typename Source>
Frame read(Source& source, std::size_t size = 1 << 20) {
    Frame frame;
    frame.bytes.resize(size);
    frame.status =
        source->readBuffer(frame.bytes.data(), static_cast<int>(size), &frame.micros, &frame.length);
    return frame;
}

/// A host with cameras of its own on the bus, and all it does with the real plug-ins.
class CameraHost : public CameraBus {
public:
    /// The first node of that type; all 0 if there is none.
    NodeEvent find(NodeType type) {
        const auto enumerator = makePlugin<IO::EnumeratorInterface>(Simulated::enumeratorGuid);
        std::vector<NodeEvent> nodes;
        enumerator->initialize(nullptr, nullptr);
        enumerator->enumerate(nodes);
        enumerator->dispose();
        for (const NodeEvent& node : nodes) {
            if (node.nodeType == type)
                return node;
        }
        return {};
    }
};

/// A node of that kind with the store that describes it.
template<typename Interface>
struct HostedNode {
    explicit HostedNode(const NodeEvent& found) : event(found) {
        store->initialize();
        if (store->selectNodeDescriptor(event.hardwareIds(), event.profile))
            node = makePlugin<Interface>(view().getNodeImplGUID());
    }
    ~HostedNode() {
        if (node)
            node->dispose();
    }
    HostedNode(const HostedNode&) = delete;
    HostedNode& operator=(const HostedNode&) = delete;

    Core::DescriptorStoreRO& view() { return *store->getDescriptorStore(); }
    void initialize() { node->initialize(&event, &view(), nullptr); }
    Interface* operator->() { return node.get(); }

    NodeEvent event;
    Utils::SmartPtr<Core::DescriptorStoreInterface> store =
        makePlugin<Core::DescriptorStoreInterface>(Cameras::descriptorStoreGuid);
    Utils::SmartPtr<Interface> node;
};

} // namespace Zentara::TestSupport
