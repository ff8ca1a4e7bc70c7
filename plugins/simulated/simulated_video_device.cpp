#include "plugins/simulated/simulated_video_device.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_details.h>
#include <zentara/core/guids.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "plugins/descriptions/wire.h"
#include "plugins/devices/pending_request.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

// Inside the device's own operations "Plugin" is the base class, so the exceptions are named here.
using Utils::Format;
using Utils::Threading::AutoLock;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::NotSupportedPluginException;

constexpr int framesKept = 4; // as many as a camera driver usually queues

CameraControlRanges controlRanges() {
    return {{
        {CameraControl_BRIGHTNESS, {-64, 64, 1, {0, false}, false}},
        {CameraControl_CONTRAST, {0, 100, 1, {50, false}, false}},
        {CameraControl_GAIN, {0, 100, 1, {20, false}, false}},
        {CameraControl_EXPOSURE, {1, 333, 1, {100, true}, true}},
    }};
}

void checkControl(CameraControlsEnum control, const CameraControlValue& value) {
    const CameraControlRanges known = controlRanges();
    const auto found = known.ranges.find(control);
    if (found == known.ranges.end())
        throw ArgumentPluginException(Format("setControl: the camera has no control %") %
                                      static_cast<int>(control));
    const CameraControlRange& range = found->second;
    if (value.automatic && !range.automaticSupported)
        throw ArgumentPluginException(Format("setControl: control % has no automatic mode") %
                                      static_cast<int>(control));
    if (!value.automatic && (value.value < range.minimum || value.value > range.maximum))
        throw ArgumentPluginException(Format("setControl: control % takes % to %, not %") %
                                      static_cast<int>(control) % range.minimum % range.maximum %
                                      value.value);
}

void checkMode(Operation operation, FrameFormat format, int rate, const std::string& name) {
    const bool sizeFits = format == FrameFormat_QVGA || format == FrameFormat_DEFAULT;
    if (!sizeFits || rate != framesPerSecond)
        throw ConfigurationPluginException(
            Format("%: the camera has no mode %; it offers QVGA at % frames a second") %
            operationName(operation) % name % framesPerSecond);
}

/// Clears what lies outside the region.
void crop(const RegionOfInterestInternal& region, std::uint16_t* plane) {
    for (std::uint32_t y = 0; y < frameHeight; ++y) {
        std::uint16_t* row = plane + std::size_t{y} * frameWidth;
        const bool inside = y >= region.y && y - region.y < region.height;
        std::fill(row, row + (inside ? region.x : frameWidth), std::uint16_t{0});
        std::fill(row + (inside ? region.x + region.width : frameWidth), row + frameWidth, std::uint16_t{0});
    }
}

} // namespace

SimulatedVideoDevice::SimulatedVideoDevice() : SimulatedVideoDevice(Settings::fromEnvironment()) {
    faults->meet(Operation::Create);
}

SimulatedVideoDevice::SimulatedVideoDevice(const Settings& settings)
    : SimulatedDevice(Core::Guids::MOCKVIDEODEVICE_IMPL, std::make_shared<Faults>(settings, Device::Video),
                      framesPerSecond, framesKept),
      seed(settings.seed), port(makePort(settings, faults)), region{0, 0, frameWidth, frameHeight},
      depth(pixelCount), confidence(pixelCount) {
    const CameraControlRanges known = controlRanges();
    for (const auto& [control, range] : known.ranges)
        controls.values[control] = range.defaultValue;
}

/// Becomes the camera of the node, with the controller that the store tells of.
void SimulatedVideoDevice::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    faults->meet(Operation::Initialize);
    VideoDeviceInterface::initialize(event, store);
    const std::string chip = store ? Core::controllerNameOf(*store) : std::string();
    std::optional<Settings> settings = settingsOf(*event, !chip.empty());
    {
        AutoLock hold(lock);
        eyes = camera.eyes();
        if (settings)
            seed = settings->seed;
        look(event->nodeType == NodeType_COLOR ? Stream::Color : Stream::Depth);
    }
    if (!settings)
        return;
    if (!chip.empty())
        settings->firmware.chip = chip;
    faults->rearm(*settings);
    std::shared_ptr<Port> made = makePort(*settings, faults); // outside the lock: it may read files
    AutoLock hold(lock);
    port = std::move(made);
}

std::shared_ptr<Port> SimulatedVideoDevice::plugged() {
    AutoLock hold(lock);
    return port;
}

std::shared_ptr<Port> SimulatedVideoDevice::requirePort(Operation operation) {
    std::shared_ptr<Port> present = plugged();
    if (!present)
        throw NotSupportedPluginException(Format("%: the simulated camera has no controller") %
                                          operationName(operation));
    return present;
}

std::size_t SimulatedVideoDevice::frameSize(const SensorOutput& output) const {
    if (stream == Stream::Color)
        return colorBytes;
    if (output.raw)
        return rawFrameBytes(output.header.mode);
    return format == OutputFormat::OutputFormat_DEPTH ? confidenceOffset : frameBytes;
}

/// Takes a few milliseconds: once before the first start, so that streams which are started together begin together.
void SimulatedVideoDevice::look(Stream wanted) {
    stream = wanted;
    scene.emplace(seed, wanted == Stream::Color ? eyes.color : eyes.depth);
}

void SimulatedVideoDevice::start(Operation operation, Stream wanted) {
    requireOpen(operation);
    requireIdle(operation);
    if (!scene || stream != wanted)
        look(wanted);
    const std::int64_t now = Utils::Clock::nowMicros();
    sceneFrame = camera.joinScene(now, framesPerSecond);
    clock.startAt(now);
}

void SimulatedVideoDevice::render(SensorOutput output, std::uint64_t frame, std::uint8_t* buffer) {
    const auto number = static_cast<std::uint32_t>(sceneFrame + frame);
    if (stream == Stream::Color) {
        scene->renderColor(number, controls.values[CameraControl_BRIGHTNESS].value, buffer);
        return;
    }
    scene->render(number, depth.data(), confidence.data());
    if (output.dark)
        output.region = {0, 0, 0, 0};
    for (const RegionOfInterestInternal& seen : {region, output.region}) {
        crop(seen, depth.data());
        crop(seen, confidence.data());
    }
    if (output.raw) {
        output.header.number = static_cast<std::uint32_t>(frame);
        encodeRawFrame(output.header, depth.data(), confidence.data(), buffer);
        return;
    }
    std::memcpy(buffer + depthOffset, depth.data(), planeBytes);
    if (format != OutputFormat::OutputFormat_DEPTH)
        std::memcpy(buffer + confidenceOffset, confidence.data(), planeBytes);
}

ReadBufferStatus SimulatedVideoDevice::readBuffer(void* buffer, int size, std::int64_t* timestamp,
                                                  int* length) {
    std::uint64_t number = 0;
    std::int64_t due = 0;
    const ReadBufferStatus status = waitForNext(buffer, timestamp, length, number, due);
    if (status != ReadBufferStatus_OK)
        return status;
    // Outside the lock: the port has one of its own. The stream may have been stopped meanwhile.
    const SensorOutput output = SensorOutput::read(plugged().get());
    AutoLock hold(lock);
    if (!clock.running())
        return ReadBufferStatus_NOT_STREAMING;
    *length = static_cast<int>(frameSize(output));
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    render(output, number, static_cast<std::uint8_t*>(buffer));
    *timestamp = due;
    return ReadBufferStatus_OK;
}

void SimulatedVideoDevice::getCameraControlRanges(IO::getCameraControlRangesRequest* request) {
    meet(Operation::GetControlRanges, request);
    request->getRanges() = controlRanges();
}

void SimulatedVideoDevice::getConfigurations(IO::getColorConfigurationsRequest* request) {
    meet(Operation::GetConfigurations, request);
    request->getConfigurations().push_back(Utils::makeRefcounted<ColorConfiguration>(
        FrameFormat_QVGA, framesPerSecond, PowerLineFrequency_DISABLED, CompressionType_NONE));
}

void SimulatedVideoDevice::enableColorStreaming(IO::enableColorRequest* request) {
    meet(Operation::EnableColor, request);
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("enableColor: the configuration is null");
    checkMode(Operation::EnableColor, mode->getFrameFormat(), mode->getFramerate(), mode->getName());
    if (mode->getCompression() != CompressionType_NONE)
        throw ConfigurationPluginException(
            Format("enableColor: the camera does not compress, so it has no mode %") % mode->getName());
    const CameraControls& settings = request->getControls();
    // All are checked before the first is taken.
    for (const auto& [control, value] : settings.values)
        checkControl(control, value);

    AutoLock hold(lock);
    start(Operation::EnableColor, Stream::Color);
    for (const auto& [control, value] : settings.values)
        controls.values[control] = value;
}

void SimulatedVideoDevice::enableDepthStreaming(IO::enableDepthRequest* request) {
    meet(Operation::EnableDepth, request);
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("enableDepth: the configuration is null");
    checkMode(Operation::EnableDepth, mode->getFrameFormat(), mode->getFramerate(), mode->getName());

    AutoLock hold(lock);
    start(Operation::EnableDepth, Stream::Depth);
}

void SimulatedVideoDevice::setCameraControl(IO::setCameraControlRequest* request) {
    meet(Operation::SetControl, request);
    checkControl(request->getControl(), request->getValue());
    AutoLock hold(lock);
    requireOpen(Operation::SetControl);
    controls.values[request->getControl()] = request->getValue();
}

void SimulatedVideoDevice::send(IO::xuSendRequest* request) {
    meet(Operation::Send, request);
    const Devices::PendingRequest pending(request);
    requirePort(Operation::Send)
        ->set(request->getUnit(), static_cast<std::uint32_t>(request->getControl()), request->getData(),
              request->getLength());
}

void SimulatedVideoDevice::recv(IO::xuRecvRequest* request) {
    meet(Operation::Recv, request);
    const Devices::PendingRequest pending(request);
    const auto control = static_cast<std::uint32_t>(request->getControl());
    const std::shared_ptr<Port> own = requirePort(Operation::Recv);
    const std::optional<Bytes> told = own->describe(request->getUnit(), control);
    if (!told) {
        own->get(request->getUnit(), control, request->getData(), request->getLength());
        return;
    }
    if (told->size() != request->getLength())
        throw ArgumentPluginException(Format("recv: there are % bytes to get, not %") %
                                      static_cast<unsigned>(told->size()) % request->getLength());
    std::copy(told->begin(), told->end(), static_cast<std::uint8_t*>(request->getData()));
}

void SimulatedVideoDevice::len(IO::xuLenRequest* request) {
    meet(Operation::Len, request);
    const std::shared_ptr<Port> own = requirePort(Operation::Len);
    const std::optional<Bytes> told = own->describe(request->getUnit(), request->getControl());
    *request->getResult() =
        told ? static_cast<int>(told->size()) : own->length(request->getUnit(), request->getControl());
}

void SimulatedVideoDevice::xuSetup(IO::xuSetupRequest* request) {
    meet(Operation::Setup, request);
    requirePort(Operation::Setup)->select(request->getGUID());
}

void SimulatedVideoDevice::read(IO::readControlTransferRequest* request) {
    faults->meet(Operation::ControlRead, request);
    VideoDeviceInterface::read(request);
}

void SimulatedVideoDevice::write(IO::writeBulkTransferRequest* request) {
    faults->meet(Operation::BulkWrite, request);
    VideoDeviceInterface::write(request);
}

void SimulatedVideoDevice::write(IO::writeControlTransferRequest* request) {
    faults->meet(Operation::ControlWrite, request);
    VideoDeviceInterface::write(request);
}

void SimulatedVideoDevice::pauseStreaming(IO::pauseStreamingRequest* request) {
    meet(Operation::Pause, request);
    clock.pause();
}

void SimulatedVideoDevice::resumeStreaming(IO::resumeStreamingRequest* request) {
    meet(Operation::Resume, request);
    clock.resume();
}

void SimulatedVideoDevice::setRegionOfInterest(IO::setDeviceRegionOfInterestRequest* request) {
    meet(Operation::SetRegion, request);
    const RegionOfInterestInternal& wanted = request->getRegion();
    const bool fits = wanted.width > 0 && wanted.height > 0 && wanted.x < frameWidth &&
                      wanted.y < frameHeight && wanted.width <= frameWidth - wanted.x &&
                      wanted.height <= frameHeight - wanted.y;
    if (!fits)
        throw ArgumentPluginException(Format("setRegion: % x % at %,% is not inside the picture of % x %") %
                                      wanted.width % wanted.height % wanted.x % wanted.y % frameWidth %
                                      frameHeight);
    AutoLock hold(lock);
    region = wanted;
}

void SimulatedVideoDevice::setOutputFormat(IO::setOutputFormatRequest* request) {
    meet(Operation::SetOutputFormat, request);
    const OutputFormat wanted = request->getFormat();
    if (wanted != OutputFormat::OutputFormat_DEPTH && wanted != OutputFormat::OutputFormat_DEPTH_CONFIDENCE)
        throw NotSupportedPluginException(Format("setOutputFormat: the camera has no format %") %
                                          static_cast<int>(wanted));
    AutoLock hold(lock);
    requireIdle(Operation::SetOutputFormat);
    format = wanted;
}

} // namespace Zentara::Simulated
