#include "plugins/cameras/nodes/color_node.h"

#include <algorithm>

#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/node_event.h>
#include <zentara/utils/format.h>

#include "plugins/cameras/nodes/attempt.h"
#include "plugins/cameras/nodes/node_commands.h"
#include "plugins/cameras/plugin_guids.h"

namespace Zentara::Cameras {
namespace {

// Inside the node's own operations "Plugin" is the base class, so the exceptions are named here.
using Mode = Utils::SmartPtr<ColorConfiguration>;
using Utils::Format;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::InvalidOperationPluginException;

std::vector<Mode> modesOf(const Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& device) {
    std::vector<Mode> modes = store.getColorConfigurations();
    if (modes.empty())
        device.getConfigurations(modes);
    std::erase(modes, Mode()); // store and device are plug-ins: an entry may be empty
    return modes;
}

CameraControlRanges rangesOf(const Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& device, bool all) {
    CameraControlRanges ranges;
    device.getCameraControlRanges(ranges);
    if (all)
        return ranges;
    const std::uint64_t flags = store.getCameraControlsFlags();
    std::erase_if(ranges.ranges, [flags](const auto& range) { return !isNamed(flags, range.first); });
    return ranges;
}

CameraControls defaultsOf(const CameraControlRanges& ranges) {
    CameraControls controls;
    for (const auto& [control, range] : ranges.ranges)
        controls.values[control] = range.defaultValue;
    return controls;
}

} // namespace

bool isNamed(std::uint64_t flags, CameraControlsEnum control) noexcept {
    return control >= 0 && control < 64 && (flags >> control & 1) != 0;
}

/// Everything that lives from `initialize` to `dispose`, in an order in which it can be taken apart.
struct ColorNode::Camera {
    Camera(Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& video, bool generic)
        : device(video), commands(store, device), modes(modesOf(store, device)),
          ranges(rangesOf(store, device, generic)), controls(defaultsOf(ranges)) {}

    IO::VideoDeviceProxy& device;
    NodeCommands commands;
    const std::vector<Mode> modes;
    const CameraControlRanges ranges;
    CameraControls controls;
    bool streaming = false;
};

ColorNode::ColorNode() : ColorNode(colorNodeGuid, false) {}

ColorNode::ColorNode(GUID guid, bool asReported) : ColorNodeInterface(guid), generic(asReported) {}

GenericColorNode::GenericColorNode() : ColorNode(genericColorNodeGuid, true) {}

ColorNode::~ColorNode() { dispose(); }

void ColorNode::initialize(NodeEvent* event, Core::DescriptorStoreRO* store, ColorProcessorData* data) {
    dispose();
    ColorNodeInterface::initialize(event, store, data);
    getAVDeviceProxy()->open();
    camera = std::make_unique<Camera>(*store, *getAVDeviceProxy(), generic);
}

void ColorNode::dispose() {
    if (camera)
        stop();
    camera.reset();
    ColorNodeInterface::dispose();
}

ColorNode::Camera& ColorNode::require(const char* operation) {
    if (!camera)
        throw InvalidOperationPluginException(Format("%: the node is not initialized") % operation);
    return *camera;
}

void ColorNode::enableStreaming(Mode configuration) {
    Camera& present = require("enableStreaming");
    if (!configuration)
        throw ArgumentPluginException("enableStreaming: the configuration is null");
    if (present.streaming)
        throw InvalidOperationPluginException("enableStreaming: the node streams already; disable it first");
    const bool known = std::any_of(present.modes.begin(), present.modes.end(), [&](const Mode& mode) {
        return mode->getName() == configuration->getName();
    });
    if (!known)
        throw ConfigurationPluginException(Format("enableStreaming: the camera has no mode %") %
                                           configuration->getName());
    present.streaming = true; // before it does: a start that failed halfway is stopped
    try {
        present.commands.start(nullptr);
        present.device.enableStreaming(configuration, present.controls);
    } catch (...) {
        stop();
        throw;
    }
}

void ColorNode::disableStreaming() {
    Camera& present = require("disableStreaming");
    if (!present.streaming)
        return;
    present.device.disableStreaming(false);
    present.streaming = false;
    present.commands.stop();
}

/// What a stream needs to end, as far as the camera takes it.
void ColorNode::stop() noexcept {
    if (!camera->streaming)
        return;
    camera->streaming = false;
    attempt([&] { camera->device.disableStreaming(false); });
    attempt([&] { camera->commands.stop(); });
}

std::vector<Mode> ColorNode::getConfigurations() {
    std::vector<Mode> copies;
    for (const Mode& mode : require("getConfigurations").modes)
        copies.push_back(Utils::makeRefcounted<ColorConfiguration>(*mode));
    return copies;
}

CameraControlRanges ColorNode::getCameraControlRanges() { return require("getCameraControlRanges").ranges; }

void ColorNode::setCameraControl(CameraControlsEnum control, CameraControlValue value) {
    Camera& present = require("setCameraControl");
    if (present.ranges.ranges.count(control) == 0)
        throw ArgumentPluginException(Format("setCameraControl: the camera has no control %") %
                                      static_cast<int>(control));
    present.device.setCameraControl(control, value);
    // Kept only if the device took it; the next stream starts with it.
    present.controls.values[control] = value;
}

CameraControls ColorNode::getCameraControls() { return require("getCameraControls").controls; }

ReadBufferStatus ColorNode::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    return require("readBuffer").device.readBuffer(buffer, size, timestamp, length);
}

} // namespace Zentara::Cameras
