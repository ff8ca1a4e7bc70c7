#include <zentara/io/hardware_requests.h>

#include <utility>

namespace Zentara::IO {

setHardwareVersionRequest::setHardwareVersionRequest() : xuRequest(XU_SET_HARDWARE_VERSION) {}

setHardwareVersionRequest::setHardwareVersionRequest(const ModuleIdInternal& first,
                                                     const ModuleIdInternal& second,
                                                     const ModuleIdInternal& third,
                                                     const ModuleIdInternal& fourth,
                                                     const ModuleIdInternal& fifth)
    : xuRequest(XU_SET_HARDWARE_VERSION), modules{first, second, third, fourth, fifth} {}

setHardwareVersionRequest::setHardwareVersionRequest(const setHardwareVersionRequest&) = default;
setHardwareVersionRequest::~setHardwareVersionRequest() = default;

Utils::SmartPtr<xuRequest> setHardwareVersionRequest::clone() const {
    return Utils::makeRefcounted<setHardwareVersionRequest>(*this);
}

setSystemCalibrationRequest::setSystemCalibrationRequest()
    : setSystemCalibrationRequest(std::vector<IntrinsicParametersInternal>()) {}

setSystemCalibrationRequest::setSystemCalibrationRequest(std::vector<IntrinsicParametersInternal> lensModels)
    : xuRequest(XU_SET_SYSTEM_CALIBRATION), intrinsics(std::move(lensModels)) {}

setSystemCalibrationRequest::setSystemCalibrationRequest(const setSystemCalibrationRequest&) = default;
setSystemCalibrationRequest::~setSystemCalibrationRequest() = default;

Utils::SmartPtr<xuRequest> setSystemCalibrationRequest::clone() const {
    return Utils::makeRefcounted<setSystemCalibrationRequest>(*this);
}

} // namespace Zentara::IO
