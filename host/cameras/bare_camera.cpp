#include "host/cameras/bare_camera.h"

#include <utility>

#include "host/attempt.h"
#include "host/cameras/device_choice.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"
#include "host/streams/camera_source.h"

namespace Zentara::Host {

namespace {

/// What every video device takes.
constexpr std::uint32_t usualFramesPerSecond = 60;

Mode usualMode() {
    StreamDescription stream;
    stream.node.nodeType = NodeType_DEPTH;
    stream.mode.fields = {FrameFormat_QVGA, usualFramesPerSecond, DepthNode::CameraMode_0, 0};
    return modeOf(stream);
}

} // namespace

BareCamera::BareCamera(DeviceOptions wanted, const Cameras::Options& shared)
    : options(std::move(wanted)), errands("a bare device", shared.limit, shared.note),
      bound(std::make_shared<BoundChip>(transfers)) {
    identity.kinds = {Kind::Depth, Kind::Audio};
    identity.controller = options.controller;
    try {
        identity.name = guidLabel(plugin(Kind::Depth));
    } catch (const Failure& noVideo) {
        try {
            identity.name = guidLabel(plugin(Kind::Audio));
        } catch (const Failure&) {
            throw Failure(noVideo);
        }
    }
}

BareCamera::~BareCamera() {
    transfers->set({});
    errands.leave([this] { return "close " + identity.label(); }, [own = bound] { own->close(); });
}

GUID BareCamera::choose(Kind kind) const {
    return errands.run("look for plug-ins", [kind, names = options.plugins, notes = errands.notes()] {
        return kind == Kind::Audio ? chooseDevice(Core::ImplType_AUDIO_DEVICE, "audio device", names, notes)
                                   : chooseDevice(Core::ImplType_VIDEO_DEVICE, "video device", names, notes);
    });
}

GUID BareCamera::plugin(Kind kind) {
    Utils::Threading::AutoLock hold(lock);
    std::optional<GUID>& chosen = kind == Kind::Audio ? audio : video;
    if (!chosen)
        chosen = choose(kind);
    return *chosen;
}

std::vector<Mode> BareCamera::modes(Kind kind) { return {defaultMode(kind)}; }

/// A sound device is asked for its mode when it streams.
Mode BareCamera::defaultMode(Kind kind) {
    if (kind == Kind::Depth)
        return usualMode();
    Mode mode;
    mode.kind = kind;
    return mode;
}

StreamInfo BareCamera::streamInfo(Kind kind, const Mode& mode) {
    const std::string name = guidLabel(plugin(kind));
    StreamInfo info;
    info.camera = identity;
    info.camera.nodes = {{kind, name, name, {}}};
    info.mode = mode;
    return info;
}

std::shared_ptr<IO::CameraChip> BareCamera::chip(const std::string& controller) {
    return errands.run("reach the controller of " + identity.label(),
                       [own = bound, device = plugin(Kind::Depth), wanted = options.controller, controller] {
                           own->open(device, wanted, controller);
                           return own->chip();
                       });
}

IO::VideoDeviceProxy& BareCamera::device() {
    static_cast<void>(chip({}));
    return *errands.run("reach the device of " + identity.label(), [own = bound] { return own->device(); });
}

StreamSetup BareCamera::streamSetup(Kind kind, const Mode& mode) {
    return streamOf(std::static_pointer_cast<BareCamera>(shared_from_this()), kind, mode);
}

void BareCamera::close() {
    errands.run("close " + identity.label(), [own = bound] { own->close(); });
}

} // namespace Zentara::Host
