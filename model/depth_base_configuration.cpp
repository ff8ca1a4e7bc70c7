#include <zentara/depth_base_configuration.h>

#include <utility>

namespace Zentara {

DepthBaseConfiguration::DepthBaseConfiguration(std::string initialName, ConfigurationType configurationType)
    : Configuration(configurationType, std::move(initialName)) {}

DepthBaseConfiguration::DepthBaseConfiguration(FrameFormat frameFormat, int rate, std::int16_t phaseDelay,
                                               std::string initialName, ConfigurationType configurationType)
    : Configuration(configurationType, std::move(initialName)), format(frameFormat), frameRate(rate),
      calibration(phaseDelay, DriftCompensation(-1, 0)) {}

DepthBaseConfiguration::DepthBaseConfiguration(const DepthBaseConfiguration&) = default;
DepthBaseConfiguration& DepthBaseConfiguration::operator=(const DepthBaseConfiguration&) = default;
DepthBaseConfiguration::~DepthBaseConfiguration() = default;

// A name says all that makes a mode; what a mode is calibrated with may differ from camera to camera.
bool DepthBaseConfiguration::isEqual(const DepthBaseConfiguration* other) const {
    return other && getName() == other->getName();
}

FrameFormat DepthBaseConfiguration::getFrameFormat() const { return format; }

void DepthBaseConfiguration::setFrameFormat(FrameFormat newFormat) { format = newFormat; }

int DepthBaseConfiguration::getFramerate() const { return frameRate; }

void DepthBaseConfiguration::setFramerate(int newFrameRate) { frameRate = newFrameRate; }

CalibrationInternal DepthBaseConfiguration::getCalibration() const { return calibration; }

void DepthBaseConfiguration::setCalibration(const CalibrationInternal& newCalibration) {
    calibration = newCalibration;
}

HardwareVersionInternal DepthBaseConfiguration::getCalibrationHardwareVersion() const {
    return calibrationHardwareVersion;
}

void DepthBaseConfiguration::setCalibrationHardwareVersion(const HardwareVersionInternal& newVersion) {
    calibrationHardwareVersion = newVersion;
}

std::vector<Utils::SmartPtr<IO::xuRequest>>& DepthBaseConfiguration::getCommands() { return commands; }

const std::vector<Utils::SmartPtr<IO::xuRequest>>& DepthBaseConfiguration::getCommands() const {
    return commands;
}

void DepthBaseConfiguration::setCommands(std::vector<Utils::SmartPtr<IO::xuRequest>> newCommands) {
    commands = std::move(newCommands);
}

} // namespace Zentara
