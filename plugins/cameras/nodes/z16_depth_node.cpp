#include "plugins/cameras/nodes/z16_depth_node.h"

#include <algorithm>
#include <cstring>

#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_details.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/node_event.h>
#include <zentara/utils/format.h>
#include <zentara/utils/kv_logger.h>

#include "plugins/cameras/nodes/attempt.h"
#include "plugins/cameras/nodes/stored_calibration.h"
#include "plugins/cameras/plugin_guids.h"
#include "plugins/descriptions/wire.h"

namespace Zentara::Cameras {
namespace {

using Mode = Utils::SmartPtr<DepthBaseConfiguration>;
using Utils::Format;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::InitializationPluginException;
using Zentara::Plugin::InvalidOperationPluginException;
using Zentara::Plugin::IOPluginException;

std::size_t pixelsOf(const Mode& mode) {
    const FrameSize size = mode ? frameSize(mode->getFrameFormat()) : FrameSize();
    return std::size_t{size.width} * size.height;
}

/// The modes of a device that no description names; it tells them in the words for colour.
std::vector<Mode> reportedModes(IO::VideoDeviceProxy& device) {
    std::vector<Utils::SmartPtr<ColorConfiguration>> reported;
    device.getConfigurations(reported);
    std::vector<Mode> modes;
    for (const auto& one : reported)
        modes.push_back(Mode(Utils::makeRefcounted<DepthConfiguration>(
            one->getFrameFormat(), one->getFramerate(), DepthNode::CameraMode_0, false, std::int16_t{0})));
    return modes;
}

std::vector<Mode> sizedModes(std::vector<Mode> modes) {
    std::erase_if(modes, [](const Mode& mode) {
        return pixelsOf(mode) == 0 || dynamic_cast<const DepthConfiguration*>(mode.get()) == nullptr;
    });
    if (modes.empty())
        throw InitializationPluginException(
            "cannot initialize a depth node: there is no mode of a known size");
    return modes;
}

std::uint32_t unitOf(const Core::DescriptorStoreRO& store) {
    const std::uint32_t micrometres = Core::depthUnitOf(store);
    if (micrometres == 0)
        throw InitializationPluginException(
            "cannot initialize a depth node: the description has no depthUnit");
    return micrometres;
}

constexpr std::uint32_t usualUnit = 1000;

std::uint32_t assumedUnit(const NodeEvent& event) {
    if (Utils::KVLogger* log = Utils::KVLogger::instance()) {
        log->warning(
            Format("%: no description tells the unit of its depth; a step is taken for a millimetre") %
            event.path);
        Utils::KVLogger::release();
    }
    return usualUnit;
}

/// Rounded. What does not fit is no depth: cut off it would be a wrong one.
std::uint16_t millimetres(std::uint16_t steps, std::uint32_t micrometres) {
    const std::uint64_t rounded = (std::uint64_t{steps} * micrometres + 500) / 1000;
    return rounded > 0xFFFF ? std::uint16_t{0} : static_cast<std::uint16_t>(rounded);
}

/// Makes the node's frame in place of what was delivered: one plane, or two with a confidence of the device's own.
void convert(std::uint8_t* frame, std::size_t pixels, bool confident, std::uint32_t micrometres) {
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        std::uint16_t depth = 0;
        std::uint16_t confidence = fullConfidence;
        std::uint8_t* const depthAt = frame + 2 * pixel;
        std::uint8_t* const confidenceAt = frame + 2 * (pixels + pixel);
        std::memcpy(&depth, depthAt, sizeof depth);
        if (confident)
            std::memcpy(&confidence, confidenceAt, sizeof confidence);
        depth = millimetres(depth, micrometres);
        confidence = depth == 0 ? std::uint16_t{0} : std::min(confidence, fullConfidence);
        std::memcpy(depthAt, &depth, sizeof depth);
        std::memcpy(confidenceAt, &confidence, sizeof confidence);
    }
    std::memset(frame + 4 * pixels, 0, 2 * pixels); // the plane of the phase, which the device does not tell
}

} // namespace

struct Z16DepthNode::Camera {
    Camera(const NodeEvent& event, Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& video, bool generic)
        : device(video), micrometres(generic ? assumedUnit(event) : unitOf(store)),
          modes(sizedModes(generic ? reportedModes(video) : store.getDepthConfigurations())),
          calibration(&store, event.serialNumber, StoredObjects()) {}

    IO::VideoDeviceProxy& device;
    const std::uint32_t micrometres; ///< of a step
    const std::vector<Mode> modes;
    StoredCalibration calibration;
    Mode running;                                 ///< null while nothing streams
    std::size_t pixels = pixelsOf(modes.front()); ///< of the mode that streams, or streamed last
};

Z16DepthNode::Z16DepthNode() : Z16DepthNode(z16DepthNodeGuid, false) {}

Z16DepthNode::Z16DepthNode(GUID guid, bool asReported) : DepthNodeInterface(guid), generic(asReported) {}

GenericDepthNode::GenericDepthNode() : Z16DepthNode(genericDepthNodeGuid, true) {}

Z16DepthNode::~Z16DepthNode() { dispose(); }

void Z16DepthNode::initialize(NodeEvent* event, Core::DescriptorStoreRO* store, DepthProcessorData* data) {
    dispose();
    DepthNodeInterface::initialize(event, store, data);
    getAVDeviceProxy()->open();
    camera = std::make_unique<Camera>(*event, *store, *getAVDeviceProxy(), generic);
}

void Z16DepthNode::dispose() {
    if (camera)
        stop();
    camera.reset();
    DepthNodeInterface::dispose();
}

Z16DepthNode::Camera& Z16DepthNode::require(const char* operation) const {
    if (!camera)
        throw InvalidOperationPluginException(Format("%: the node is not initialized") % operation);
    return *camera;
}

void Z16DepthNode::enableStreaming(Mode configuration) {
    Camera& present = require("enableStreaming");
    if (!configuration)
        throw ArgumentPluginException("enableStreaming: the configuration is null");
    if (present.running)
        throw InvalidOperationPluginException("enableStreaming: the node streams already; disable it first");
    for (const Mode& mode : present.modes) {
        if (mode->getName() == configuration->getName())
            present.running = mode;
    }
    if (!present.running)
        throw ConfigurationPluginException(Format("enableStreaming: the camera has no mode %") %
                                           configuration->getName());
    present.pixels = pixelsOf(present.running);
    try {
        present.device.enableStreaming(present.running);
    } catch (...) {
        stop();
        throw;
    }
}

void Z16DepthNode::disableStreaming() {
    Camera& present = require("disableStreaming");
    if (!present.running)
        return;
    present.device.disableStreaming(false);
    present.running = {};
}

void Z16DepthNode::stop() noexcept {
    if (camera->running)
        attempt([&] { camera->device.disableStreaming(false); });
    camera->running = {};
}

StereoCameraParametersArray Z16DepthNode::getImageRegistrationCalibration() {
    return require("getImageRegistrationCalibration").calibration.lenses();
}

TemperatureCompensation Z16DepthNode::getTemperatureCompensation() {
    return require("getTemperatureCompensation").calibration.getTemperatureCompensation();
}

CyclicErrorCorrection Z16DepthNode::getCyclicErrorCorrection() {
    return require("getCyclicErrorCorrection").calibration.cyclicErrorCorrection();
}

float Z16DepthNode::getPhaseScaling() { return 0; }

std::string Z16DepthNode::getSerialNumber() {
    return require("getSerialNumber").calibration.getSerialNumber();
}

Core::CalibrationSource Z16DepthNode::getCalibrationSource(Core::CalibrationPart part) const {
    using Core::CalibrationSource;
    const StoredCalibration& known = require("getCalibrationSource").calibration;
    const auto described = [](bool isThere) {
        return isThere ? CalibrationSource::Description : CalibrationSource::None;
    };
    switch (part) {
    case Core::CalibrationPart::Lens:
        return described(!known.lenses().depthIntrinsics.values.empty());
    case Core::CalibrationPart::Extrinsics:
        return described(!known.lenses().extrinsics.values.empty());
    case Core::CalibrationPart::Corrections:
        return described(!generic);
    case Core::CalibrationPart::Accelerometer:
        break;
    case Core::CalibrationPart::SerialNumber:
        return known.hasSerialNumber() ? CalibrationSource::Camera : CalibrationSource::None;
    }
    return CalibrationSource::None;
}

std::string Z16DepthNode::getCalibrationFailure() const { return {}; }

std::vector<Mode> Z16DepthNode::getConfigurations() {
    std::vector<Mode> copies;
    for (const Mode& mode : require("getConfigurations").modes)
        copies.push_back(
            Utils::makeRefcounted<DepthConfiguration>(dynamic_cast<const DepthConfiguration&>(*mode)));
    return copies;
}

ReadBufferStatus Z16DepthNode::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    Camera& present = require("readBuffer");
    if (buffer == nullptr || timestamp == nullptr || length == nullptr)
        throw ArgumentPluginException("readBuffer: a pointer is null");
    const std::size_t plane = 2 * present.pixels;
    *length = static_cast<int>(3 * plane);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    int bytes = 0;
    const ReadBufferStatus status = present.device.readBuffer(buffer, *length, timestamp, &bytes);
    // The caller's buffer suffices: it is the camera whose frames are too long.
    if (status != ReadBufferStatus_OK && status != ReadBufferStatus_TOO_SMALL)
        return status;
    const auto delivered = static_cast<std::size_t>(bytes);
    if (status == ReadBufferStatus_TOO_SMALL || (delivered != plane && delivered != 2 * plane))
        throw IOPluginException(Format("readBuffer: % bytes from the camera are no frame of % pixels") %
                                bytes % static_cast<unsigned>(present.pixels));
    convert(static_cast<std::uint8_t*>(buffer), present.pixels, delivered == 2 * plane, present.micrometres);
    return ReadBufferStatus_OK;
}

} // namespace Zentara::Cameras
