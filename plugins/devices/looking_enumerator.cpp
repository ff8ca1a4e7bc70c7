#include "plugins/devices/looking_enumerator.h"

#include <algorithm>
#include <cstddef>
#include <new>
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
    std::vector<ExternalEvent> untold;
    while (!exitRequested()) {
        try {
            addNews(untold);
            auto* const queue = getEventQueue();
            for (; !untold.empty(); untold.erase(untold.begin())) {
                if (queue)
                    queue->push(untold.front());
            }
        } catch (const std::bad_alloc&) {
            // What is not told yet is told next time.
        }
        awaitNews();
    }
    return nullptr;
}

/// All of it or, where memory is lacking, nothing.
void LookingEnumerator::addNews(std::vector<ExternalEvent>& events) {
    const AutoLock hold(lock);
    look();
    const std::size_t before = events.size();
    try {
        std::vector<NodeEvent> told = present;
        addChanges(events);
        addTrouble(events);
        announced.swap(told);
    } catch (...) {
        events.erase(events.begin() + static_cast<std::ptrdiff_t>(before), events.end());
        throw;
    }
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
void LookingEnumerator::addChanges(std::vector<ExternalEvent>& events) {
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
}

} // namespace Zentara::Devices
