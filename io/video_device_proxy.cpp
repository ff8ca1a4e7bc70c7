#include <zentara/io/video_device_proxy.h>

#include <utility>

#include <zentara/color_configuration.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/video_device_interface.h>

#include "io/device_link.h"
#include "io/owned_requests.h"

namespace Zentara::IO {

struct VideoDeviceProxy::Impl : DeviceLink<VideoDeviceInterface> {
    using DeviceLink::DeviceLink;
};

VideoDeviceProxy::VideoDeviceProxy(GUID guid, bool proxified)
    : AVDeviceProxy(proxified), impl(std::make_unique<Impl>(guid)) {
    impl->initializeThread(*this);
}

VideoDeviceProxy::~VideoDeviceProxy() { VideoDeviceProxy::dispose(); }

void VideoDeviceProxy::threadInitialize() { impl->ask(&VideoDeviceInterface::threadInitialize); }

void VideoDeviceProxy::threadUninitialize() { impl->ask(&VideoDeviceInterface::threadUninitialize); }

ReadBufferStatus VideoDeviceProxy::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    return impl->ask(&VideoDeviceInterface::readBuffer, buffer, size, timestamp, length);
}

void VideoDeviceProxy::open() {
    impl->call<deviceRequest>(*this, &VideoDeviceInterface::open, RequestType_OPEN);
}

void VideoDeviceProxy::close() {
    impl->call<deviceRequest>(*this, &VideoDeviceInterface::close, RequestType_CLOSE);
}

void VideoDeviceProxy::disableStreaming(bool flag) {
    impl->call<disableRequest>(*this, &VideoDeviceInterface::disableStreaming, flag);
}

void VideoDeviceProxy::setOutputFormat(setOutputFormatRequest::OutputFormat format) {
    impl->call<setOutputFormatRequest>(*this, &VideoDeviceInterface::setOutputFormat, format);
}

void VideoDeviceProxy::getCameraControlRanges(CameraControlRanges& ranges) {
    impl->call<getCameraControlRangesRequest, OwnedControlRangesRequest>(
        *this, &VideoDeviceInterface::getCameraControlRanges, ranges);
}

void VideoDeviceProxy::getConfigurations(std::vector<Utils::SmartPtr<ColorConfiguration>>& configurations) {
    impl->call<getColorConfigurationsRequest, OwnedColorConfigurationsRequest>(
        *this, &VideoDeviceInterface::getConfigurations, configurations);
}

void VideoDeviceProxy::enableStreaming(Utils::SmartPtr<DepthBaseConfiguration> configuration) {
    impl->call<enableDepthRequest, OwnedDepthRequest>(*this, &VideoDeviceInterface::enableDepthStreaming,
                                                      std::move(configuration));
}

void VideoDeviceProxy::enableStreaming(Utils::SmartPtr<ColorConfiguration> configuration,
                                       CameraControls controls) {
    impl->call<enableColorRequest, OwnedColorRequest>(*this, &VideoDeviceInterface::enableColorStreaming,
                                                      std::move(configuration), std::move(controls));
}

void VideoDeviceProxy::setCameraControl(CameraControlsEnum control, CameraControlValue value) {
    impl->call<setCameraControlRequest>(*this, &VideoDeviceInterface::setCameraControl, control, value);
}

void VideoDeviceProxy::send(std::uint32_t unit, std::int32_t control, std::uint32_t length,
                            const void* data) {
    impl->call<xuSendRequest, OwnedSendRequest>(*this, &VideoDeviceInterface::send, unit, control, length,
                                                data);
}

void VideoDeviceProxy::recv(std::uint32_t unit, std::int32_t control, std::uint32_t length, void* data,
                            bool flag) {
    impl->call<xuRecvRequest, OwnedRecvRequest>(*this, &VideoDeviceInterface::recv, unit, control, length,
                                                data, flag);
}

int VideoDeviceProxy::len(std::uint32_t unit, std::uint32_t control) {
    std::int32_t result = 0;
    impl->call<xuLenRequest, OwnedLenRequest>(*this, &VideoDeviceInterface::len, unit, control, &result);
    return result;
}

void VideoDeviceProxy::xuSetup(const GUID& guid) {
    impl->call<xuSetupRequest, OwnedSetupRequest>(*this, &VideoDeviceInterface::xuSetup, guid);
}

void VideoDeviceProxy::read(std::uint8_t requestCode, std::uint16_t value, std::uint16_t index,
                            std::uint8_t* buffer, std::uint16_t length) {
    impl->call<readControlTransferRequest, OwnedReadControlRequest>(
        *this, &VideoDeviceInterface::read, requestCode, value, index, buffer, length);
}

void VideoDeviceProxy::write(std::uint8_t requestCode, std::uint16_t value, std::uint16_t index,
                             const std::uint8_t* buffer, std::uint16_t length) {
    using Write = void (VideoDeviceInterface::*)(writeControlTransferRequest*);
    impl->call<writeControlTransferRequest, OwnedWriteControlRequest>(
        *this, static_cast<Write>(&VideoDeviceInterface::write), requestCode, value, index, buffer, length);
}

void VideoDeviceProxy::write(std::uint8_t endpoint, const std::uint8_t* data, std::int32_t length) {
    using Write = void (VideoDeviceInterface::*)(writeBulkTransferRequest*);
    impl->call<writeBulkTransferRequest, OwnedWriteBulkRequest>(
        *this, static_cast<Write>(&VideoDeviceInterface::write), endpoint, data, length);
}

void VideoDeviceProxy::pauseStreaming() {
    impl->call<pauseStreamingRequest>(*this, &VideoDeviceInterface::pauseStreaming);
}

void VideoDeviceProxy::resumeStreaming() {
    impl->call<resumeStreamingRequest>(*this, &VideoDeviceInterface::resumeStreaming);
}

void VideoDeviceProxy::setRegionOfInterest(const RegionOfInterestInternal& region) {
    impl->call<setDeviceRegionOfInterestRequest>(*this, &VideoDeviceInterface::setRegionOfInterest, region);
}

void VideoDeviceProxy::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    impl->ask(&VideoDeviceInterface::initialize, event, store);
}

// First the device takes its preparation of the worker's thread back, while there is a worker; it is let go last, because
// with it its library may leave the process.
void VideoDeviceProxy::dispose() {
    impl->uninitializeThread(*this, "Failed to call threadUninitialize");
    AVDeviceProxy::dispose();
    impl->release(*this);
}

} // namespace Zentara::IO
