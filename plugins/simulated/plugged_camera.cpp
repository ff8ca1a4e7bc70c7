#include "plugins/simulated/plugged_camera.h"

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

namespace Zentara::Simulated {
namespace {

using Utils::Format;
using Utils::Threading::AutoLock;

constexpr std::int64_t lookMicros = 100'000;

} // namespace

std::string PluggedCamera::attach(const NodeEvent& node) {
    const AutoLock hold(lock);
    bus.reset();
    gone = false;
    if (!SimulatedBus::isCameraPath(node.parentPath))
        return {};
    auto found = std::make_unique<SimulatedBus>();
    const SimulatedBus::Camera* camera = found->find(node.parentPath);
    if (camera == nullptr)
        throw Plugin::IOPluginException(Format("initialize: no camera is plugged in as '%'%") %
                                        node.parentPath %
                                        (found->error().empty() ? "" : "; " + found->error()));
    bus = std::move(found);
    path = node.parentPath;
    nextLook = Utils::Clock::nowMicros() + lookMicros;
    return camera->settings;
}

bool PluggedCamera::isGone() {
    const AutoLock hold(lock);
    if (!bus || gone || Utils::Clock::nowMicros() < nextLook)
        return gone;
    bus->refresh();
    gone = bus->find(path) == nullptr;
    nextLook = Utils::Clock::nowMicros() + lookMicros;
    return gone;
}

void PluggedCamera::require(const char* operation) {
    if (isGone())
        throw Plugin::IOPluginException(Format("%: the camera was unplugged") % operation);
}

} // namespace Zentara::Simulated
