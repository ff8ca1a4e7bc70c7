#include "plugins/simulated/simulated_enumerator.h"

#include <algorithm>

#include <zentara/core/guids.h>
#include <zentara/utils/clock.h>

namespace Zentara::Simulated {
namespace {

constexpr std::uint32_t vendorId = 0xFFFE; // no maker has this number
constexpr std::uint32_t productId = 0x0001;
constexpr const char* cameraPath = "simulated:0";

NodeEvent nodeOf(NodeType type, std::uint32_t index, const char* suffix, const char* name) {
    NodeEvent node;
    node.nodeType = type;
    node.path = std::string(cameraPath) + suffix;
    node.name = name;
    node.serialNumber = "SIM0001";
    node.vendorId = vendorId;
    node.productId = productId;
    node.revision = 1;
    node.interfaceNumber = index;
    node.nodeIndex = index;
    node.parentPath = cameraPath;
    return node;
}

} // namespace

SimulatedEnumerator::SimulatedEnumerator()
    : EnumeratorInterface(Core::Guids::MOCK_ENUMERATOR_IMPL), present{nodeOf(NodeType_DEPTH, 0, "/depth",
                                                                             "Simulated depth camera"),
                                                                      nodeOf(NodeType_AUDIO, 1, "/audio",
                                                                             "Simulated microphones")} {}

SimulatedEnumerator::~SimulatedEnumerator() { dispose(); }

void SimulatedEnumerator::enumerate(std::vector<NodeEvent>& nodes) { nodes = present; }

bool SimulatedEnumerator::isPresent(const NodeEvent& node) {
    return std::any_of(present.begin(), present.end(),
                       [&](const NodeEvent& candidate) { return candidate.path == node.path; });
}

std::string SimulatedEnumerator::getBackendName() { return "simulated cameras"; }

void SimulatedEnumerator::exit() {
    EnumeratorInterface::exit();
    wake.set();
}

void* SimulatedEnumerator::run(void*) {
    for (const NodeEvent& node : present)
        announce(node);
    while (!exitRequested())
        wake.wait();
    return nullptr;
}

void SimulatedEnumerator::announce(const NodeEvent& node) {
    auto* events = getEventQueue();
    if (events == nullptr)
        return;
    ExternalEvent event;
    event.type = ExternalEventType_NODE_ARRIVED;
    event.node = node;
    Utils::Clock::getTime(event.timeMicros);
    events->push(event);
}

} // namespace Zentara::Simulated
