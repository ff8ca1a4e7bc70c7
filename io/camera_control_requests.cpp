#include <zentara/io/camera_control_requests.h>

#include <zentara/color_configuration.h>

namespace Zentara::IO {

setCameraControlRequest::setCameraControlRequest(AVDeviceInterface* device, CameraControlsEnum setting,
                                                 CameraControlValue newValue)
    : deviceRequest(device, RequestType_SET_CAMERA_CONTROL), control(setting), value(newValue) {}
setCameraControlRequest::~setCameraControlRequest() = default;

CameraControlsEnum setCameraControlRequest::getControl() const { return control; }
CameraControlValue setCameraControlRequest::getValue() const { return value; }

getCameraControlRangesRequest::getCameraControlRangesRequest(AVDeviceInterface* device,
                                                             CameraControlRanges& result)
    : deviceRequest(device, RequestType_GET_CAMERA_CONTROL_RANGES), ranges(result) {}
getCameraControlRangesRequest::~getCameraControlRangesRequest() = default;

CameraControlRanges& getCameraControlRangesRequest::getRanges() const { return ranges; }

getColorConfigurationsRequest::getColorConfigurationsRequest(
    AVDeviceInterface* device, std::vector<Utils::SmartPtr<ColorConfiguration>>& result)
    : deviceRequest(device, RequestType_GET_COLOR_CONFIGURATIONS), configurations(result) {}
getColorConfigurationsRequest::~getColorConfigurationsRequest() = default;

std::vector<Utils::SmartPtr<ColorConfiguration>>& getColorConfigurationsRequest::getConfigurations() const {
    return configurations;
}

} // namespace Zentara::IO
