#include "plugins/simulated/simulated_enumerator.h"

#include <algorithm>
#include <cstdint>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/utils/clock.h>

#include "plugins/simulated/plugin_guids.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

using Utils::Threading::AutoLock;

constexpr unsigned long lookMilliseconds = 100;

bool samePlace(const NodeEvent& left, const NodeEvent& right) { return left.path == right.path; }

const NodeEvent* findNode(const std::vector<NodeEvent>& nodes, const NodeEvent& wanted) {
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [&](const NodeEvent& node) { return samePlace(node, wanted); });
    return found == nodes.end() ? nullptr : &*found;
}

/// Another camera of the same kind has the number already.
bool numberTaken(const std::vector<NodeEvent>& nodes, const NodeEvent& node) {
    return std::any_of(nodes.begin(), nodes.end(), [&](const NodeEvent& other) {
        return other.vendorId == node.vendorId && other.productId == node.productId &&
               other.revision == node.revision && other.interfaceNumber == node.interfaceNumber &&
               other.deviceIndex == node.deviceIndex;
    });
}

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

ExternalEvent makeEvent(ExternalEventType type, const NodeEvent& node) {
    ExternalEvent event;
    event.type = type;
    event.node = node;
    event.timeMicros = Utils::Clock::nowMicros();
    return event;
}

} // namespace

SimulatedEnumerator::SimulatedEnumerator() : EnumeratorInterface(enumeratorGuid) {}

SimulatedEnumerator::~SimulatedEnumerator() { dispose(); }

void SimulatedEnumerator::initialize(Utils::Collection::Queue<ExternalEvent>* events,
                                     Core::DescriptorStoreRO* store) {
    dispose();
    const AutoLock hold(lock);
    EnumeratorInterface::initialize(events, store);
    bus = std::make_unique<SimulatedBus>();
}

void SimulatedEnumerator::dispose() {
    EnumeratorInterface::dispose();
    const AutoLock hold(lock); // whoever is looking has done with the store then
    forget();
}

void SimulatedEnumerator::forget() {
    bus.reset();
    present.clear();
    announced.clear();
    suspected.clear();
    reported.clear();
}

void SimulatedEnumerator::enumerate(std::vector<NodeEvent>& nodes) {
    const AutoLock hold(lock);
    look();
    nodes = present;
}

bool SimulatedEnumerator::isPresent(const NodeEvent& node) {
    const AutoLock hold(lock);
    look();
    return findNode(present, node) != nullptr;
}

std::string SimulatedEnumerator::getBackendName() { return "simulated cameras"; }

void SimulatedEnumerator::exit() {
    EnumeratorInterface::exit();
    wake.set();
}

void* SimulatedEnumerator::run(void*) {
    {
        const AutoLock hold(lock);
        announced.clear(); // a thread that is started anew tells everything
    }
    while (!exitRequested()) {
        std::vector<ExternalEvent> events;
        {
            const AutoLock hold(lock);
            look();
            events = changes();
            reportTrouble(events);
        }
        if (auto* queue = getEventQueue()) {
            for (const ExternalEvent& event : events)
                queue->push(event);
        }
        wake.timedWait(lookMilliseconds);
    }
    return nullptr;
}

/// Nodes that stay keep what was said of them, whatever else came or went.
void SimulatedEnumerator::look() {
    if (!bus)
        return;
    bus->refresh();
    std::vector<NodeEvent> found;
    std::uint32_t port = 0;
    for (const SimulatedBus::Camera& camera : bus->cameras())
        addNodes(camera, ++port, found);
    std::vector<NodeEvent> numbered;
    for (NodeEvent& node : found) {
        const NodeEvent* before = findNode(present, node);
        if (before != nullptr && before->hardwareIds() == node.hardwareIds())
            numbered.push_back(node = *before);
    }
    // New ones get the lowest numbers that are free.
    for (NodeEvent& node : found) {
        if (findNode(numbered, node) != nullptr)
            continue;
        while (numberTaken(numbered, node))
            ++node.deviceIndex;
        numbered.push_back(node);
    }
    present = std::move(found);
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
        nodes.push_back(std::move(node));
    }
}

/// What went and what came since the host was told last.
std::vector<ExternalEvent> SimulatedEnumerator::changes() {
    std::vector<ExternalEvent> events;
    for (const NodeEvent& node : announced) {
        const NodeEvent* now = findNode(present, node);
        if (now == nullptr || !(*now == node))
            events.push_back(makeEvent(ExternalEventType_NODE_REMOVED, node));
    }
    for (const NodeEvent& node : present) {
        const NodeEvent* before = findNode(announced, node);
        if (before == nullptr || !(*before == node))
            events.push_back(makeEvent(ExternalEventType_NODE_ARRIVED, node));
    }
    announced = present;
    return events;
}

/// A file may be seen half written: only what is wrong twice in a row is reported.
void SimulatedEnumerator::reportTrouble(std::vector<ExternalEvent>& events) {
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
