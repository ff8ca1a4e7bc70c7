#include "plugins/devices/looking_enumerator.h"

#include <algorithm>
#include <utility>

#include <zentara/utils/clock.h>

namespace Zentara::Devices {

using Utils::Threading::AutoLock;

namespace {

/// Two nodes of one camera may share a path, and one camera may follow another at its place.
bool isSame(const NodeEvent& left, const NodeEvent& right) {
    return left.path == right.path && left.nodeType == right.nodeType &&
           left.hardwareIds() == right.hardwareIds();
}

const NodeEvent* findNode(const std::vector<NodeEvent>& nodes, const NodeEvent& wanted) {
    const auto found =
        std::find_if(nodes.begin(), nodes.end(), [&](const NodeEvent& node) { return isSame(node, wanted); });
    return found == nodes.end() ? nullptr : &*found;
}

/// Counts the nodes that have the same identifying values; those that stay keep their number.
void number(std::vector<NodeEvent>& nodes, const std::vector<NodeEvent>& before) {
    std::vector<NodeEvent> numbered;
    const auto isTaken = [&numbered](const NodeEvent& node) {
        return std::any_of(numbered.begin(), numbered.end(), [&](const NodeEvent& other) {
            return other.hardwareIds() == node.hardwareIds() && other.deviceIndex == node.deviceIndex;
        });
    };
    for (NodeEvent& node : nodes) {
        if (const NodeEvent* const old = findNode(before, node)) {
            node.deviceIndex = old->deviceIndex;
            numbered.push_back(node);
        }
    }
    for (NodeEvent& node : nodes) {
        if (findNode(numbered, node) != nullptr)
            continue;
        node.deviceIndex = 0;
        while (isTaken(node))
            ++node.deviceIndex;
        numbered.push_back(node);
    }
}

} // namespace

LookingEnumerator::LookingEnumerator(GUID guid) : EnumeratorInterface(guid) {}

void LookingEnumerator::initialize(Utils::Collection::Queue<ExternalEvent>* events,
                                   Core::DescriptorStoreRO* store) {
    dispose();
    const AutoLock hold(lock);
    EnumeratorInterface::initialize(events, store);
    begin();
}

void LookingEnumerator::dispose() {
    EnumeratorInterface::dispose();
    const AutoLock hold(lock); // whoever is looking has done with the store then
    forget();
    present.clear();
    announced.clear();
}

void LookingEnumerator::enumerate(std::vector<NodeEvent>& nodes) {
    const AutoLock hold(lock);
    look();
    nodes = present;
}

bool LookingEnumerator::isPresent(const NodeEvent& node) {
    const AutoLock hold(lock);
    look();
    return before(node) != nullptr;
}

void* LookingEnumerator::run(void*) {
    {
        const AutoLock hold(lock);
        announced.clear();
    }
    while (!exitRequested()) {
        std::vector<ExternalEvent> events;
        {
            const AutoLock hold(lock);
            look();
            events = changes();
            addTrouble(events);
        }
        if (auto* queue = getEventQueue()) {
            for (const ExternalEvent& event : events)
                queue->push(event);
        }
        awaitNews();
    }
    return nullptr;
}

const NodeEvent* LookingEnumerator::before(const NodeEvent& node) const { return findNode(present, node); }

ExternalEvent LookingEnumerator::makeEvent(ExternalEventType type, const NodeEvent& node) {
    ExternalEvent event;
    event.type = type;
    event.node = node;
    event.timeMicros = Utils::Clock::nowMicros();
    return event;
}

void LookingEnumerator::look() {
    std::vector<NodeEvent> found = find();
    number(found, present);
    present = std::move(found);
}

/// What went and what came since the host was told last.
std::vector<ExternalEvent> LookingEnumerator::changes() {
    std::vector<ExternalEvent> events;
    const auto addMissing = [&events](ExternalEventType type, const std::vector<NodeEvent>& from,
                                      const std::vector<NodeEvent>& in) {
        for (const NodeEvent& node : from) {
            const NodeEvent* const other = findNode(in, node);
            if (other == nullptr || !(*other == node))
                events.push_back(makeEvent(type, node));
        }
    };
    addMissing(ExternalEventType_NODE_REMOVED, announced, present);
    addMissing(ExternalEventType_NODE_ARRIVED, present, announced);
    announced = present;
    return events;
}

} // namespace Zentara::Devices
