#include "io/request_execution.h"

#include <zentara/io/audio_device_interface.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/thread_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/format.h>

namespace Zentara::IO {

namespace {

[[noreturn]] void refuse(const deviceRequest& request) {
    throw Plugin::NotSupportedPluginException(Utils::Format("%: request and device do not fit together") %
                                              RequestType_toString(request.type()));
}

/// Type codes are the caller's word; what decides is what request and device really are.
template<typename Device, typename Request>
void call(deviceRequest& request, void (Device::*operation)(Request*)) {
    auto* const device = dynamic_cast<Device*>(request.device());
    auto* const typed = dynamic_cast<Request*>(&request);
    if (!device || !typed)
        refuse(request);
    (device->*operation)(typed);
}

/// For operations that any request fits. The carrier of extension-unit traffic is for that alone.
AVDeviceInterface& plainDevice(deviceRequest& request) {
    if (!request.device() || dynamic_cast<xuProxyRequest*>(&request))
        refuse(request);
    return *request.device();
}

} // namespace

void dispatch(deviceRequest& request) {
    // Without a default: a type that is added and forgotten here is a warning. Numbers that are no type do nothing.
    switch (request.type()) {
    case RequestType_THREAD_INITIALIZE:
        return plainDevice(request).threadInitialize();
    case RequestType_THREAD_UNINITIALIZE:
        return plainDevice(request).threadUninitialize();
    case RequestType_OPEN:
        return plainDevice(request).open(&request);
    case RequestType_CLOSE:
        return plainDevice(request).close(&request);
    case RequestType_DISABLE:
        return call(request, &AVDeviceInterface::disableStreaming);
    case RequestType_XUSEND:
        return call(request, &VideoDeviceInterface::send);
    case RequestType_XURECV:
        return call(request, &VideoDeviceInterface::recv);
    case RequestType_XULEN:
        return call(request, &VideoDeviceInterface::len);
    case RequestType_XUSETUP:
        return call(request, &VideoDeviceInterface::xuSetup);
    case RequestType_ENABLE_DEPTH:
        return call(request, &VideoDeviceInterface::enableDepthStreaming);
    case RequestType_ENABLE_COLOR:
        return call(request, &VideoDeviceInterface::enableColorStreaming);
    case RequestType_SET_CAMERA_CONTROL:
        return call(request, &VideoDeviceInterface::setCameraControl);
    case RequestType_GET_CAMERA_CONTROL_RANGES:
        return call(request, &VideoDeviceInterface::getCameraControlRanges);
    case RequestType_GET_COLOR_CONFIGURATIONS:
        return call(request, &VideoDeviceInterface::getConfigurations);
    case RequestType_ReadControlTransfer:
        return call(request, &VideoDeviceInterface::read);
    case RequestType_WriteControlTransfer:
        return call<VideoDeviceInterface, writeControlTransferRequest>(request, &VideoDeviceInterface::write);
    case RequestType_WriteBulkTransfer:
        return call<VideoDeviceInterface, writeBulkTransferRequest>(request, &VideoDeviceInterface::write);
    case RequestType_PauseStreaming:
        return call(request, &VideoDeviceInterface::pauseStreaming);
    case RequestType_ResumeStreaming:
        return call(request, &VideoDeviceInterface::resumeStreaming);
    case RequestType_ENABLE_AUDIO:
        return call(request, &AudioDeviceInterface::enableStreaming);
    case RequestType_GET_AUDIO_DEFAULT_CONFIGURATION:
        return call(request, &AudioDeviceInterface::getDefaultConfiguration);
    case RequestType_SET_AUDIO_LEVEL:
        return call(request, &AudioDeviceInterface::setInputMixerLevel);
    case RequestType_SET_AUDIO_MUTE:
        return call(request, &AudioDeviceInterface::setMute);
    case RequestType_NONE:
    case RequestType_RegionOfInterest: // Direct calls alone carry these two to a device.
    case RequestType_OutputFormat:
        break;
    }
}

} // namespace Zentara::IO
