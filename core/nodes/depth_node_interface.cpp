#include <zentara/core/depth_node_interface.h>

#include <zentara/core/periodic_operation.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/io/xu_request.h>

#include "core/interface_version.h"
#include "core/nodes/node_link.h"

namespace Zentara::Core {

using Zentara::Plugin::NotSupportedPluginException;

struct DepthNodeInterface::Impl : NodeLink<IO::VideoDeviceProxy, DepthProcessorData> {};

DepthNodeInterface::DepthNodeInterface(GUID guid)
    : Plugin(getImplType(), guid), impl(std::make_unique<Impl>()) {}

DepthNodeInterface::~DepthNodeInterface() = default;

ImplType DepthNodeInterface::getImplType() { return ImplType_DEPTH_NODE; }

void DepthNodeInterface::getPluginVersion(int* major, int* minor, int* patch) {
    reportInterfaceVersion(major, minor, patch);
}

void DepthNodeInterface::initialize(NodeEvent* event, DescriptorStoreRO* store, DepthProcessorData* data) {
    impl->connect(event, store, data).initialize(event, store);
}

void DepthNodeInterface::dispose() { impl->disconnect(); }

void DepthNodeInterface::getVersions(int& majorVersion, int& minorVersion) {
    majorVersion = 0;
    minorVersion = 0;
}

void DepthNodeInterface::configurePeriodicOperations(
    std::vector<Utils::SmartPtr<PeriodicOperation>> /*list*/) {}

void DepthNodeInterface::resetDevice() {
    throw NotSupportedPluginException(
        "Reset Device operation is not supported by this depth node implementation");
}

void DepthNodeInterface::setIlluminationLevel(DepthNode::CameraMode /*mode*/, int /*level*/) {}

void DepthNodeInterface::setConfiguration(Utils::SmartPtr<DepthBaseConfiguration> /*configuration*/) {
    throw NotSupportedPluginException("setConfiguration: Not supported");
}

void DepthNodeInterface::setCalibration(CalibrationInternal* /*calibration*/) {}

unsigned int DepthNodeInterface::getMaximumRawBytesPerPixel() { return 8; }

float DepthNodeInterface::getPhaseScaling() { return 1; }

void DepthNodeInterface::process(Utils::SmartPtr<IO::xuRequest> /*request*/) {
    throw NotSupportedPluginException("operation not supported");
}

void DepthNodeInterface::setDiagnosticData(DiagnosticData /*data*/) {}

SensorValueArray DepthNodeInterface::readTemperatures() { return {}; }

AccelerationInternal DepthNodeInterface::readAccelerometer(AccelerometerPeriodicOperation* /*operation*/) {
    return {};
}

SensorValueArray DepthNodeInterface::readTemperature(TemperaturePeriodicOperation* /*operation*/) {
    return {};
}

float DepthNodeInterface::getRange() { return 0; }

FrameFormat DepthNodeInterface::getDVPFrameMode() { return FrameFormat_DEFAULT; }

StereoCameraParametersArray DepthNodeInterface::getImageRegistrationCalibration() { return {}; }

SensorValueArray DepthNodeInterface::getTemperatureCalibration(DepthNode::CameraMode /*mode*/) { return {}; }

TemperatureCalibration DepthNodeInterface::getTemperatureCalibration() { return {}; }

CyclicErrorCorrection DepthNodeInterface::getCyclicErrorCorrection() { return {}; }

DiagnosticData DepthNodeInterface::getDiagnosticData() { return {}; }

std::string DepthNodeInterface::getSerialNumber() { return {}; }

AccelerationInternal DepthNodeInterface::getAccelerometerCalibration() { return {}; }

void DepthNodeInterface::reloadROMLayout(bool /*force*/) {}

void DepthNodeInterface::setEnableVideoSync(Utils::SmartPtr<DepthBaseConfiguration> /*configuration*/,
                                            bool /*enabled*/) {}

bool DepthNodeInterface::getEnableVideoSync() const { return false; }

IO::VideoDeviceProxy* DepthNodeInterface::getAVDeviceProxy() const { return impl->proxy.get(); }

DescriptorStoreRO* DepthNodeInterface::getDescriptorStore() const { return impl->store; }

DepthProcessorData* DepthNodeInterface::getDepthProcessorData() const { return impl->data; }

} // namespace Zentara::Core
