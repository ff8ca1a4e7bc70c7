#include "plugins/v4l2/v4l2_device.h"

#include <algorithm>
#include <cstring>
#include <linux/usb/video.h>
#include <linux/videodev2.h>
#include <utility>

#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/guids.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/extension_unit_query.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/format.h>

#include "plugins/linux/sysfs.h"
#include "plugins/linux/warn.h"
#include "plugins/v4l2/camera_settings.h"

namespace Zentara::V4l2 {

// Inside the device's own operations "Plugin" is the base class, so the exceptions are named here.
using Utils::Format;
using Utils::Threading::AutoLock;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::InvalidOperationPluginException;
using Zentara::Plugin::NotSupportedPluginException;

namespace {

/// \throws Plugin::NotSupportedPluginException for a node that delivers no pictures, such as one of metadata
void requirePictures(const DeviceFile& file) {
    v4l2_capability told{};
    file.require(VIDIOC_QUERYCAP, told, "ask what the node can do");
    const std::uint32_t can =
        (told.capabilities & V4L2_CAP_DEVICE_CAPS) != 0 ? told.device_caps : told.capabilities;
    if ((can & V4L2_CAP_VIDEO_CAPTURE) == 0 || (can & V4L2_CAP_STREAMING) == 0)
        throw NotSupportedPluginException(Format("%: it delivers no pictures in one plane of memory") %
                                          file.path());
}

/// The modes, each once. \param named those alone whose size has a name
std::vector<Utils::SmartPtr<ColorConfiguration>> configurationsOf(const DeviceFile& file, bool depth,
                                                                  bool named) {
    const PowerLineFrequency mains = depth ? PowerLineFrequency_DISABLED : usualPowerLine(file);
    std::vector<Utils::SmartPtr<ColorConfiguration>> list;
    const auto add = [&](const DriverMode& mode, CompressionType compression) {
        const FrameFormat format = frameFormatOf(mode.size);
        if (compression == CompressionType_NONE && !depth && mode.size.width % 2 != 0)
            return; // packed YUY2 has pairs of pixels
        if (format == FrameFormat_NONE || (named && format >= FrameFormat_DEFAULT) || mode.rate() == 0)
            return;
        auto one = Utils::makeRefcounted<ColorConfiguration>(format, mode.rate(), mains, compression);
        if (std::none_of(list.begin(), list.end(),
                         [&](const auto& known) { return known->isEqual(one.get()); }))
            list.push_back(std::move(one));
    };
    const std::vector<DriverMode> modes = modesOf(file);
    for (const DriverMode& mode : modes) {
        if (canDeliver(mode.fourCC, depth ? Delivery::Depth : Delivery::Color))
            add(mode, CompressionType_NONE);
    }
    for (const DriverMode& mode : modes) {
        if (!depth && canDeliver(mode.fourCC, Delivery::Compressed))
            add(mode, mode.fourCC == V4L2_PIX_FMT_H264 ? CompressionType_H264 : CompressionType_MJPEG);
    }
    // The first one is what is taken where nobody asks for another: one that hosts know by name.
    std::stable_partition(list.begin(), list.end(),
                          [](const auto& one) { return one->getFrameFormat() < FrameFormat_DEFAULT; });
    return list;
}

void tellBroken(const std::string& path, std::uint64_t count) {
    if (count > 0)
        Linux::warn(Format("%: % frames were left out, for they were broken or cut short") % path % count);
}

} // namespace

V4l2Device::V4l2Device() : V4l2Device(Linux::systemKernel()) {}

V4l2Device::V4l2Device(std::shared_ptr<Linux::Kernel> system)
    : KernelDevice(Core::Guids::V4L2VIDEO_IMPL, defaultPath), kernel(std::move(system)) {}

V4l2Device::~V4l2Device() { letGo(); }

void V4l2Device::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    VideoDeviceInterface::initialize(event, store);
    // A camera is silent with all its nodes, and not the one that is plugged in at its place.
    attach(event->path, Linux::Sysfs::pluggedIn(event->parentPath, event->deviceAddress));
}

std::shared_ptr<Capture> V4l2Device::present() {
    const AutoLock hold(lock);
    return capture;
}

void V4l2Device::open(IO::deviceRequest* request) {
    openWith(request, "open the camera", [system = kernel, place = path] {
        auto made = std::make_shared<Node>();
        made->file = std::make_shared<DeviceFile>(system, place);
        requirePictures(*made->file);
        const Linux::Sysfs sysfs;
        const auto camera = sysfs.hardwareOfVideo(place);
        const bool usb = Linux::Sysfs::isUsb(camera);
        made->units = std::make_unique<ExtensionUnits>(
            made->file, usb ? sysfs.videoNodesOf(camera) : std::vector<std::string>(),
            Linux::Sysfs::descriptors(camera));
        return made;
    });
}

std::shared_ptr<void> V4l2Device::endStream() noexcept {
    if (capture)
        capture->end();
    return std::move(capture);
}

void V4l2Device::close(IO::deviceRequest* request) {
    static_cast<void>(require("close"));
    disableStreaming(nullptr);
    KernelDevice::close(request);
}

void V4l2Device::disableStreaming(IO::disableRequest* request) {
    static_cast<void>(require("stop the stream"));
    std::shared_ptr<Capture> last;
    {
        const AutoLock hold(lock);
        last = capture;
        static_cast<void>(endStream());
    }
    if (!last)
        return;
    awaitReader();
    tellBroken(path, last->broken());
    call(request, "stop the stream", [ended = std::move(last)]() mutable { ended.reset(); });
}

ReadBufferStatus V4l2Device::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    if (buffer == nullptr || timestamp == nullptr || length == nullptr)
        throw ArgumentPluginException("readBuffer: a pointer is null");
    const AutoLock reader(reading);
    const std::shared_ptr<Capture> stream = present();
    return stream ? stream->read(buffer, size, timestamp, length) : ReadBufferStatus_NOT_STREAMING;
}

// Settings and modes ---------------------------------------------------------------------------------------------------

void V4l2Device::getCameraControlRanges(IO::getCameraControlRangesRequest* request) {
    request->getRanges() = call(request, "ask for the ranges of the settings",
                                [own = require("ask for settings")] { return readRanges(*own->file); });
}

void V4l2Device::setCameraControl(IO::setCameraControlRequest* request) {
    call(request, "change a setting",
         [own = require("change a setting"), control = request->getControl(), value = request->getValue()] {
             writeSetting(*own->file, control, value);
         });
}

void V4l2Device::getConfigurations(IO::getColorConfigurationsRequest* request) {
    const bool depth = getDescription().nodeType == NodeType_DEPTH;
    const bool described =
        getDescriptorStore() != nullptr && getDescriptorStore()->getNodeDescriptor() != nullptr;
    const auto modes = call(request, "ask for the modes", [own = require("ask for modes"), depth, described] {
        return configurationsOf(*own->file, depth, described);
    });
    auto& list = request->getConfigurations();
    list.insert(list.end(), modes.begin(), modes.end());
}

// Streams --------------------------------------------------------------------------------------------------------------

/// What the node's description says that it delivers; 0 when it does not say.
std::uint32_t V4l2Device::describedFourCC() const {
    return getDescriptorStore() == nullptr ? 0 : getDescriptorStore()->getFourCC().code;
}

/// \param prepare is done with the node before it is set, on the device's own thread
template<typename Prepare>
void V4l2Device::start(IO::deviceRequest* request, const WantedStream& wanted, Prepare prepare) {
    std::optional<RegionOfInterestInternal> crop;
    {
        const AutoLock hold(lock);
        if (capture)
            throw InvalidOperationPluginException(
                Format("%: cannot start a stream: the device streams already; disable it first") % path);
        crop = region;
    }
    auto started =
        call(request, "start the stream", [own = require("start a stream"), wanted, crop, prepare] {
            const DriverMode chosen = chooseMode(*own->file, modesOf(*own->file), wanted);
            prepare(*own->file);
            return std::make_shared<Capture>(own->file, chosen, wanted.delivery, crop);
        });
    const AutoLock hold(lock);
    capture = std::move(started);
}

void V4l2Device::enableColorStreaming(IO::enableColorRequest* request) {
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("enableColor: the configuration is null");
    const CompressionType compression = mode->getCompression();
    start(request,
          {compression == CompressionType_NONE ? Delivery::Color : Delivery::Compressed, describedFourCC(),
           compression, frameSize(mode->getFrameFormat()), mode->getFramerate(), mode->getName()},
          [mains = mode->getPowerLineFrequency(), controls = request->getControls()](const DeviceFile& file) {
              writePowerLine(file, mains);
              writeSettings(file, controls);
          });
}

void V4l2Device::enableDepthStreaming(IO::enableDepthRequest* request) {
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("enableDepth: the configuration is null");
    start(request,
          {Delivery::Depth, describedFourCC(), CompressionType_NONE, frameSize(mode->getFrameFormat()),
           mode->getFramerate(), mode->getName()},
          [](const DeviceFile&) {});
}

void V4l2Device::pauseStreaming(IO::pauseStreamingRequest* request) {
    if (auto stream = present())
        call(request, "pause the stream", [own = std::move(stream)] { own->pause(); });
}

void V4l2Device::resumeStreaming(IO::resumeStreamingRequest* request) {
    if (auto stream = present())
        call(request, "go on with the stream", [own = std::move(stream)] { own->resume(); });
}

void V4l2Device::setRegionOfInterest(IO::setDeviceRegionOfInterestRequest* request) {
    const RegionOfInterestInternal& wanted = request->getRegion();
    if (present())
        throw InvalidOperationPluginException(
            Format("%: cannot set the region of interest while the device streams; disable it first") % path);
    call(request, "set the region of interest",
         [own = require("set the region of interest"), wanted] { cropTo(*own->file, wanted); });
    const AutoLock hold(lock);
    region = wanted;
}

// Extension units ------------------------------------------------------------------------------------------------------

void V4l2Device::xuSetup(IO::xuSetupRequest* request) {
    call(
        request, "choose an extension unit",
        [own = require("choose an extension unit"), guid = request->getGUID()] { own->units->select(guid); });
}

void V4l2Device::len(IO::xuLenRequest* request) {
    *request->getResult() = call(request, "ask for the length of a control",
                                 [own = require("ask for the length of a control"), unit = request->getUnit(),
                                  control = request->getControl()]() -> std::int32_t {
                                     return unit == IO::extensionUnitList
                                                ? static_cast<std::int32_t>(own->units->list().size())
                                                : own->units->length(unit, control);
                                 });
}

void V4l2Device::send(IO::xuSendRequest* request) {
    const auto* const first = static_cast<const std::uint8_t*>(request->getData());
    call(request, Format("set control % of unit %") % request->getControl() % request->getUnit(),
         [own = require("set a control"), unit = request->getUnit(),
          control = static_cast<std::uint32_t>(request->getControl()),
          bytes = ExtensionUnits::Bytes(first, first + request->getLength())] {
             own->units->set(unit, control, bytes);
         });
}

void V4l2Device::recv(IO::xuRecvRequest* request) {
    auto* const first = static_cast<std::uint8_t*>(request->getData());
    const auto wanted = static_cast<std::uint32_t>(request->getControl());
    const std::uint32_t control = wanted & 0xFF;
    const auto query = static_cast<std::uint8_t>(wanted >> 8 == 0 ? UVC_GET_CUR : wanted >> 8);
    const auto answer = call(request, Format("get control % of unit %") % control % request->getUnit(),
                             [own = require("get a control"), unit = request->getUnit(), control, query,
                              plain = request->getFlag() || query != UVC_GET_CUR,
                              question = ExtensionUnits::Bytes(first, first + request->getLength())] {
                                 if (unit == IO::extensionUnitList)
                                     return own->units->list();
                                 if (!plain)
                                     return own->units->ask(unit, control, question);
                                 return own->units->get(unit, control, question.size(), query);
                             });
    if (answer.size() != request->getLength())
        throw ArgumentPluginException(Format("%: there are % bytes to get, not %") % path %
                                      static_cast<unsigned>(answer.size()) % request->getLength());
    std::copy(answer.begin(), answer.end(), first);
}

void V4l2Device::read(IO::readControlTransferRequest*) {
    throw NotSupportedPluginException(Format("%: this kernel's video interface has no control transfers") %
                                      path);
}

void V4l2Device::write(IO::writeBulkTransferRequest*) {
    throw NotSupportedPluginException(Format("%: this kernel's video interface has no bulk transfers") %
                                      path);
}

void V4l2Device::write(IO::writeControlTransferRequest*) {
    throw NotSupportedPluginException(Format("%: this kernel's video interface has no control transfers") %
                                      path);
}

} // namespace Zentara::V4l2
