#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/read_buffer_status.h>
#include <zentara/utils/files.h>

#include "plugins/cameras/plugin_guids.h"
#include "plugins/descriptions/wire.h"
#include "plugins/simulated/plugin_guids.h"
#include "plugins/simulated/simulated_bus.h"
#include "support/failure.h"
#include "support/scoped_variable.h"
#include "support/temporary_directory.h"
#include "tests/plugins/plugin_object.h"

namespace Zentara::TestSupport {

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
class CameraHost {
public:
    CameraHost() = default;

    /// Says which cameras are plugged in: the elements of the file's list.
    void plug(const std::string& cameras) { write(R"({"format": 1, "cameras": [)" + cameras + "]}"); }

    /// As the documentation tells users to: nobody sees half a file.
    void write(const std::string& text) {
        Utils::writeFile(path("new.json"), text);
        std::error_code busy; // on Windows while somebody reads the file
        do {
            std::filesystem::rename(TemporaryDirectory::fromUtf8(path("new.json")),
                                    TemporaryDirectory::fromUtf8(file()), busy);
        } while (busy);
    }

    /// The file that says which cameras are plugged in.
    [[nodiscard]] std::string file() const { return path("cameras.json"); }

    /// The first node of that type; all 0 if there is none.
    NodeEvent find(NodeType type, const std::string& serialNumber = {}) {
        const auto enumerator = makePlugin<IO::EnumeratorInterface>(Simulated::enumeratorGuid);
        std::vector<NodeEvent> nodes;
        enumerator->initialize(nullptr, nullptr);
        enumerator->enumerate(nodes);
        enumerator->dispose();
        for (const NodeEvent& node : nodes) {
            if (node.nodeType == type && (serialNumber.empty() || node.serialNumber == serialNumber))
                return node;
        }
        return {};
    }

    /// A file of the test's own.
    [[nodiscard]] std::string path(const std::string& name = {}) const { return directory.path(name); }

private:
    TemporaryDirectory directory;
    ScopedVariable variable{Simulated::SimulatedBus::variable, file()};
};

/// A node of that kind with the store that describes it.
template<typename Interface>
struct HostedNode {
    explicit HostedNode(const NodeEvent& found) : event(found) {
        store->initialize();
        selected = store->selectNodeDescriptor(event.hardwareIds(), event.profile);
        if (selected)
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
    bool selected = false;
};

} // namespace Zentara::TestSupport
