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
#include <zentara/io/streaming_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/format.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/pending_request.h"
#include "plugins/simulated/plugged_camera.h"
#include "plugins/simulated/port.h"
#include "plugins/simulated/scene.h"
#include "plugins/simulated/sensor_output.h"
#include "plugins/simulated/settings.h"
#include "plugins/simulated/stream_clock.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

// Inside the device's own operations "Plugin" is the base class, so the exceptions are named here.
using Utils::Format;
using Utils::Threading::AutoLock;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::InvalidOperationPluginException;
using Zentara::Plugin::NotSupportedPluginException;
using OutputFormat = IO::setOutputFormatRequest::OutputFormat;

constexpr int framesKept = 4; // as many as a camera driver usually queues

enum class Stream : std::uint8_t { None, Depth, Color };

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

struct SimulatedVideoDevice::Impl {
    explicit Impl(const Settings& settings)
        : faults(std::make_shared<Faults>(settings, Device::Video)), scene(settings.seed),
          port(makePort(settings, faults)), depth(pixelCount), confidence(pixelCount) {
        const CameraControlRanges known = controlRanges();
        for (const auto& [control, range] : known.ranges)
            controls.values[control] = range.defaultValue;
    }

    /// Becomes the camera of the node: its settings on top of the environment's, its controller.
    void plugIn(const NodeEvent& node, const Core::DescriptorStoreRO* store) {
        const std::string own = camera.attach(node);
        const std::string chip = store ? Core::controllerNameOf(*store) : std::string();
        if (own.empty() && chip.empty())
            return;
        Settings settings = Settings::fromEnvironment();
        settings.add(own, node.parentPath);
        if (!chip.empty())
            settings.firmware.chip = chip;
        faults->rearm(settings);
        std::shared_ptr<Port> made = makePort(settings, faults);
        AutoLock hold(lock);
        scene = Scene(settings.seed);
        port = std::move(made);
    }

    void meet(Operation operation, IO::deviceRequest* request) {
        faults->meet(operation, request);
        camera.require(operationName(operation));
    }

    std::shared_ptr<Port> plugged() {
        AutoLock hold(lock);
        return port;
    }

    [[nodiscard]] std::size_t frameSize(const SensorOutput& output) const ZENTARA_REQUIRES(lock) {
        if (stream == Stream::Color)
            return colorBytes;
        if (output.raw)
            return rawFrameBytes(output.header.mode);
        return format == OutputFormat::OutputFormat_DEPTH ? confidenceOffset : frameBytes;
    }

    void requireOpen(Operation operation) ZENTARA_REQUIRES(lock) {
        if (!opened)
            throw InvalidOperationPluginException(Format("%: the device is closed; open it first") %
                                                  operationName(operation));
    }

    void requireIdle(Operation operation) ZENTARA_REQUIRES(lock) {
        if (stream != Stream::None)
            throw InvalidOperationPluginException(Format("%: the device is streaming; disable it first") %
                                                  operationName(operation));
    }

    std::shared_ptr<Port> requirePort(Operation operation) {
        std::shared_ptr<Port> present = plugged();
        if (!present)
            throw NotSupportedPluginException(Format("%: the simulated camera has no controller") %
                                              operationName(operation));
        return present;
    }

    void start(Stream wanted) ZENTARA_REQUIRES(lock) {
        stream = wanted;
        clock.start();
    }

    void stop() ZENTARA_REQUIRES(lock) {
        stream = Stream::None;
        clock.stop();
    }

    void render(SensorOutput output, std::uint64_t frame, std::uint8_t* buffer) ZENTARA_REQUIRES(lock) {
        const auto number = static_cast<std::uint32_t>(frame);
        if (stream == Stream::Color) {
            scene.renderColor(number, controls.values[CameraControl_BRIGHTNESS].value, buffer);
            return;
        }
        scene.render(number, depth.data(), confidence.data());
        if (output.dark)
            output.region = {0, 0, 0, 0};
        for (const RegionOfInterestInternal& seen : {region, output.region}) {
            crop(seen, depth.data());
            crop(seen, confidence.data());
        }
        if (output.raw) {
            output.header.number = number;
            encodeRawFrame(output.header, depth.data(), confidence.data(), buffer);
            return;
        }
        std::memcpy(buffer + depthOffset, depth.data(), pixelCount * sizeof depth[0]);
        if (format != OutputFormat::OutputFormat_DEPTH)
            std::memcpy(buffer + confidenceOffset, confidence.data(), pixelCount * sizeof confidence[0]);
    }

    const std::shared_ptr<Faults> faults;
    PluggedCamera camera;
    StreamClock clock{framesPerSecond, framesKept};
    Utils::Threading::Mutex lock; ///< never held while waiting for a frame
    Scene scene ZENTARA_GUARDED_BY(lock);
    std::shared_ptr<Port> port ZENTARA_GUARDED_BY(lock);
    bool opened ZENTARA_GUARDED_BY(lock) = false;
    Stream stream ZENTARA_GUARDED_BY(lock) = Stream::None;
    OutputFormat format ZENTARA_GUARDED_BY(lock) = OutputFormat::OutputFormat_DEPTH_CONFIDENCE;
    RegionOfInterestInternal region ZENTARA_GUARDED_BY(lock){0, 0, frameWidth, frameHeight};
    CameraControls controls ZENTARA_GUARDED_BY(lock);
    std::vector<std::uint16_t>
        depth ZENTARA_GUARDED_BY(lock); ///< the caller's buffer may lie at an odd address
    std::vector<std::uint16_t> confidence ZENTARA_GUARDED_BY(lock);
};

SimulatedVideoDevice::SimulatedVideoDevice()
    : VideoDeviceInterface(Core::Guids::MOCKVIDEODEVICE_IMPL),
      impl(std::make_unique<Impl>(Settings::fromEnvironment())) {
    impl->faults->meet(Operation::Create);
}

SimulatedVideoDevice::~SimulatedVideoDevice() = default;

void SimulatedVideoDevice::dispose() {
    impl->clock.stop();
    impl->faults->meet(Operation::Dispose);
    VideoDeviceInterface::dispose();
}

void SimulatedVideoDevice::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    impl->faults->meet(Operation::Initialize);
    VideoDeviceInterface::initialize(event, store);
    impl->plugIn(*event, store);
}

void SimulatedVideoDevice::threadInitialize() { impl->faults->meet(Operation::ThreadInitialize); }

void SimulatedVideoDevice::threadUninitialize() { impl->faults->meet(Operation::ThreadUninitialize); }

bool SimulatedVideoDevice::cancelIO() {
    return !impl->faults->refusesCancel() && (impl->faults->cancel() || impl->clock.cancel());
}

ReadBufferStatus SimulatedVideoDevice::readBuffer(void* buffer, int size, std::int64_t* timestamp,
                                                  int* length) {
    if (buffer == nullptr || timestamp == nullptr || length == nullptr)
        throw ArgumentPluginException("readBuffer: a pointer is null");
    impl->faults->meet(Operation::ReadBuffer);
    std::uint64_t number = 0;
    std::int64_t due = 0;
    const StreamClock::Turn turn = impl->clock.waitForNext(number, due);
    if (impl->camera.isGone())
        return ReadBufferStatus_DISCONNECTED;
    if (turn != StreamClock::Turn::Due)
        return statusOf(turn);

    const SensorOutput output = SensorOutput::read(impl->plugged().get());
    AutoLock hold(impl->lock);
    if (impl->stream == Stream::None)
        return ReadBufferStatus_NOT_STREAMING;
    *length = static_cast<int>(impl->frameSize(output));
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    impl->render(output, number, static_cast<std::uint8_t*>(buffer));
    *timestamp = due;
    return ReadBufferStatus_OK;
}

void SimulatedVideoDevice::open(IO::deviceRequest* request) {
    impl->meet(Operation::Open, request);
    AutoLock hold(impl->lock);
    if (impl->opened)
        throw InvalidOperationPluginException("open: the device is open already");
    impl->opened = true;
}

void SimulatedVideoDevice::close(IO::deviceRequest* request) {
    impl->faults->meet(Operation::Close, request);
    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::Close);
    impl->stop();
    impl->opened = false;
}

void SimulatedVideoDevice::disableStreaming(IO::disableRequest* request) {
    impl->faults->meet(Operation::Disable, request);
    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::Disable);
    impl->stop();
}

void SimulatedVideoDevice::getCameraControlRanges(IO::getCameraControlRangesRequest* request) {
    impl->meet(Operation::GetControlRanges, request);
    request->getRanges() = controlRanges();
}

void SimulatedVideoDevice::getConfigurations(IO::getColorConfigurationsRequest* request) {
    impl->meet(Operation::GetConfigurations, request);
    request->getConfigurations().push_back(Utils::makeRefcounted<ColorConfiguration>(
        FrameFormat_QVGA, framesPerSecond, PowerLineFrequency_DISABLED, CompressionType_NONE));
}

void SimulatedVideoDevice::enableColorStreaming(IO::enableColorRequest* request) {
    impl->meet(Operation::EnableColor, request);
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("enableColor: the configuration is null");
    checkMode(Operation::EnableColor, mode->getFrameFormat(), mode->getFramerate(), mode->getName());
    if (mode->getCompression() != CompressionType_NONE)
        throw ConfigurationPluginException(
            Format("enableColor: the camera does not compress, so it has no mode %") % mode->getName());
    const CameraControls& settings = request->getControls();
    for (const auto& [control, value] : settings.values)
        checkControl(control, value);

    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::EnableColor);
    impl->requireIdle(Operation::EnableColor);
    for (const auto& [control, value] : settings.values)
        impl->controls.values[control] = value;
    impl->start(Stream::Color);
}

void SimulatedVideoDevice::enableDepthStreaming(IO::enableDepthRequest* request) {
    impl->meet(Operation::EnableDepth, request);
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("enableDepth: the configuration is null");
    checkMode(Operation::EnableDepth, mode->getFrameFormat(), mode->getFramerate(), mode->getName());

    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::EnableDepth);
    impl->requireIdle(Operation::EnableDepth);
    impl->start(Stream::Depth);
}

void SimulatedVideoDevice::setCameraControl(IO::setCameraControlRequest* request) {
    impl->meet(Operation::SetControl, request);
    checkControl(request->getControl(), request->getValue());
    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::SetControl);
    impl->controls.values[request->getControl()] = request->getValue();
}

void SimulatedVideoDevice::send(IO::xuSendRequest* request) {
    impl->meet(Operation::Send, request);
    const PendingRequest pending(request);
    impl->requirePort(Operation::Send)
        ->set(request->getUnit(), static_cast<std::uint32_t>(request->getControl()), request->getData(),
              request->getLength());
}

void SimulatedVideoDevice::recv(IO::xuRecvRequest* request) {
    impl->meet(Operation::Recv, request);
    const PendingRequest pending(request);
    impl->requirePort(Operation::Recv)
        ->get(request->getUnit(), static_cast<std::uint32_t>(request->getControl()), request->getData(),
              request->getLength());
}

void SimulatedVideoDevice::len(IO::xuLenRequest* request) {
    impl->meet(Operation::Len, request);
    *request->getResult() =
        impl->requirePort(Operation::Len)->length(request->getUnit(), request->getControl());
}

void SimulatedVideoDevice::xuSetup(IO::xuSetupRequest* request) {
    impl->meet(Operation::Setup, request);
    impl->requirePort(Operation::Setup)->select(request->getGUID());
}

void SimulatedVideoDevice::read(IO::readControlTransferRequest* request) {
    impl->faults->meet(Operation::ControlRead, request);
    VideoDeviceInterface::read(request);
}

void SimulatedVideoDevice::write(IO::writeBulkTransferRequest* request) {
    impl->faults->meet(Operation::BulkWrite, request);
    VideoDeviceInterface::write(request);
}

void SimulatedVideoDevice::write(IO::writeControlTransferRequest* request) {
    impl->faults->meet(Operation::ControlWrite, request);
    VideoDeviceInterface::write(request);
}

void SimulatedVideoDevice::pauseStreaming(IO::pauseStreamingRequest* request) {
    impl->meet(Operation::Pause, request);
    impl->clock.pause();
}

void SimulatedVideoDevice::resumeStreaming(IO::resumeStreamingRequest* request) {
    impl->meet(Operation::Resume, request);
    impl->clock.resume();
}

void SimulatedVideoDevice::setRegionOfInterest(IO::setDeviceRegionOfInterestRequest* request) {
    impl->meet(Operation::SetRegion, request);
    const RegionOfInterestInternal& wanted = request->getRegion();
    const bool fits = wanted.width > 0 && wanted.height > 0 && wanted.x < frameWidth &&
                      wanted.y < frameHeight && wanted.width <= frameWidth - wanted.x &&
                      wanted.height <= frameHeight - wanted.y;
    if (!fits)
        throw ArgumentPluginException(Format("setRegion: % x % at %,% is not inside the picture of % x %") %
                                      wanted.width % wanted.height % wanted.x % wanted.y % frameWidth %
                                      frameHeight);
    AutoLock hold(impl->lock);
    impl->region = wanted;
}

void SimulatedVideoDevice::setOutputFormat(IO::setOutputFormatRequest* request) {
    impl->meet(Operation::SetOutputFormat, request);
    const OutputFormat wanted = request->getFormat();
    if (wanted != OutputFormat::OutputFormat_DEPTH && wanted != OutputFormat::OutputFormat_DEPTH_CONFIDENCE)
        throw NotSupportedPluginException(Format("setOutputFormat: the camera has no format %") %
                                          static_cast<int>(wanted));
    AutoLock hold(impl->lock);
    impl->requireIdle(Operation::SetOutputFormat);
    impl->format = wanted;
}

} // namespace Zentara::Simulated
