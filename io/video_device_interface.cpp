#include <zentara/io/video_device_interface.h>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::IO {

using Zentara::Plugin::NotSupportedPluginException;

VideoDeviceInterface::VideoDeviceInterface(GUID guid) : AVDeviceInterface(getImplType(), guid) {}

VideoDeviceInterface::~VideoDeviceInterface() = default;

Core::ImplType VideoDeviceInterface::getImplType() { return Core::ImplType_VIDEO_DEVICE; }

void VideoDeviceInterface::read(readControlTransferRequest*) {
    throw NotSupportedPluginException("not supported");
}

void VideoDeviceInterface::write(writeBulkTransferRequest*) {
    throw NotSupportedPluginException("not supported");
}

void VideoDeviceInterface::write(writeControlTransferRequest*) {
    throw NotSupportedPluginException("not supported");
}

void VideoDeviceInterface::pauseStreaming(pauseStreamingRequest*) {}

void VideoDeviceInterface::resumeStreaming(resumeStreamingRequest*) {}

void VideoDeviceInterface::setRegionOfInterest(setDeviceRegionOfInterestRequest*) {
    throw NotSupportedPluginException("setting region of interest is not supported");
}

void VideoDeviceInterface::setOutputFormat(setOutputFormatRequest*) {
    throw NotSupportedPluginException("setting output format is not supported");
}

} // namespace Zentara::IO
