#include "plugins/simulated/simulated_enumerator.h"

#include <cstdint>

#include <zentara/core/descriptor_store_ro.h>

#include "plugins/simulated/plugin_guids.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr unsigned long lookMilliseconds = 100;

/// What the camera itself says of a node; without a store it is all that is known.
NodeEvent describe(const SimulatedBus::Camera& camera, const NodeDescription& described,
                   std::uint32_t position) {
    NodeEvent node;
    const HardwareIDs& ids = camera.description->device.hardwareIds;
    node.nodeType = described.type;
    node.path = camera.path() + "/" + nodeTypeName(described.type);
    node.name = described.name;
    node.serialNumber = camera.serialNumber;
    node.vendorId = ids.vendorId;
    node.productId = ids.productId;
    node.revision = ids.revision;
    node.interfaceNumber = described.interfaceNumber;
    node.busNumber = 1;
    node.deviceAddress = position;
    node.portNumber = position;
    node.nodeIndex = described.index;
    node.parentPath = camera.path();
    return node;
}

} // namespace

SimulatedEnumerator::SimulatedEnumerator() : LookingEnumerator(enumeratorGuid) {}

SimulatedEnumerator::~SimulatedEnumerator() { dispose(); }

std::string SimulatedEnumerator::getBackendName() { return "simulated cameras"; }

void SimulatedEnumerator::exit() {
    EnumeratorInterface::exit();
    wake.set();
}

void SimulatedEnumerator::awaitNews() { wake.timedWait(lookMilliseconds); }

void SimulatedEnumerator::begin() { bus = std::make_unique<SimulatedBus>(); }

void SimulatedEnumerator::forget() {
    bus.reset();
    suspected.clear();
    reported.clear();
}

std::vector<NodeEvent> SimulatedEnumerator::find() {
    std::vector<NodeEvent> found;
    if (!bus)
        return found;
    bus->refresh();
    std::uint32_t port = 0;
    for (const SimulatedBus::Camera& camera : bus->cameras())
        addNodes(camera, ++port, found);
    return found;
}

void SimulatedEnumerator::addNodes(const SimulatedBus::Camera& camera, std::uint32_t port,
                                   std::vector<NodeEvent>& nodes) {
    for (const NodeDescription& described : camera.description->nodes) {
        NodeEvent node = describe(camera, described, port);
        if (getDescriptorStore() != nullptr) {
            if (!selectNodeDescriptor(&node, Core::Profile_DEFAULT))
                continue;
            fillEvent(&node);
        }
        if (const NodeEvent* const stays = before(node)) {
            // A camera stays in its port, wherever in the file it stands by now.
            node.deviceAddress = stays->deviceAddress;
            node.portNumber = stays->portNumber;
        }
        nodes.push_back(std::move(node));
    }
}

/// A file may be seen half written: only what is wrong twice in a row is reported.
void SimulatedEnumerator::addTrouble(std::vector<ExternalEvent>& events) {
    const std::string now = bus ? bus->error() : std::string();
    if (now.empty()) {
        reported.clear();
    } else if (now == suspected && now != reported) {
        NodeEvent file;
        file.path = bus->file();
        file.name = now;
        events.push_back(makeEvent(ExternalEventType_ERROR, file));
        reported = now;
    }
    suspected = now;
}

} // namespace Zentara::Simulated
