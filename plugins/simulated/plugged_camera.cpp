#include "plugins/simulated/plugged_camera.h"

#include <map>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

namespace Zentara::Simulated {
namespace {

using Utils::Format;
using Utils::Threading::AutoLock;

constexpr std::int64_t lookMicros = 100'000;

/// When the scenes began that cameras with a running stream see, by the camera's path.
class Scenes {
public:
    std::shared_ptr<const std::int64_t> join(const std::string& path, std::int64_t now) {
        const AutoLock hold(lock);
        std::erase_if(begun, [](const auto& scene) { return scene.second.expired(); });
        std::weak_ptr<const std::int64_t>& known = begun[path];
        std::shared_ptr<const std::int64_t> begin = known.lock();
        if (!begin)
            known = begin = std::make_shared<const std::int64_t>(now);
        return begin;
    }

private:
    Utils::Threading::Mutex lock;
    std::map<std::string, std::weak_ptr<const std::int64_t>> begun ZENTARA_GUARDED_BY(lock);
};

Scenes& scenes() {
    static Scenes all;
    return all;
}

} // namespace

std::string PluggedCamera::attach(const NodeEvent& node) {
    const AutoLock hold(lock);
    bus.reset();
    gone = false;
    seenWith = {};
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
    seenWith = eyesOf(*camera->description);
    nextLook = Utils::Clock::nowMicros() + lookMicros;
    return camera->settings;
}

Eyes PluggedCamera::eyes() {
    const AutoLock hold(lock);
    return seenWith;
}

std::uint64_t PluggedCamera::joinScene(std::int64_t now, int framesPerSecond) {
    constexpr std::int64_t microsPerSecond = 1'000'000;
    const AutoLock hold(lock);
    sceneBegin.reset();
    sceneBegin = bus ? scenes().join(path, now) : std::make_shared<const std::int64_t>(now);
    const std::int64_t halfFrames = 2 * (now - *sceneBegin) * framesPerSecond / microsPerSecond;
    return static_cast<std::uint64_t>((halfFrames + 1) / 2);
}

void PluggedCamera::leaveScene() {
    const AutoLock hold(lock);
    sceneBegin.reset();
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
