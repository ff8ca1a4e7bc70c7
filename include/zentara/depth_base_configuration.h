#pragma once

#include <vector>

#include <zentara/calibration_internal.h>
#include <zentara/configuration.h>
#include <zentara/frame_format.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/io/xu_request.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {

/// What depth modes have in common: the frames, the calibration with the hardware that it belongs to, and the
/// requests that put the camera into the mode. Subclasses name it. Separate.
class ZENTARA_API DepthBaseConfiguration : public Configuration {
public:
    /// Depth configurations are equal exactly when their names are; false for null.
    [[nodiscard]] virtual bool isEqual(const DepthBaseConfiguration* other) const;

    [[nodiscard]] FrameFormat getFrameFormat() const;
    /// Frames a second.
    [[nodiscard]] int getFramerate() const;

    [[nodiscard]] CalibrationInternal getCalibration() const;
    void setCalibration(const CalibrationInternal& newCalibration);
    [[nodiscard]] HardwareVersionInternal getCalibrationHardwareVersion() const;
    void setCalibrationHardwareVersion(const HardwareVersionInternal& newVersion);

    /// The requests in the order in which they are sent.
    [[nodiscard]] std::vector<Utils::SmartPtr<IO::xuRequest>>& getCommands();
    [[nodiscard]] const std::vector<Utils::SmartPtr<IO::xuRequest>>& getCommands() const;
    void setCommands(std::vector<Utils::SmartPtr<IO::xuRequest>> newCommands);

protected:
    DepthBaseConfiguration(std::string name, ConfigurationType type);

    /// The calibration starts with `phaseDelay` and no drift compensation.
    DepthBaseConfiguration(FrameFormat format, int frameRate, std::int16_t phaseDelay, std::string name,
                           ConfigurationType type);
    DepthBaseConfiguration(const DepthBaseConfiguration&);
    DepthBaseConfiguration& operator=(const DepthBaseConfiguration&);
    ~DepthBaseConfiguration() override;

    // Only a subclass can derive the name that goes with the change.
    void setFrameFormat(FrameFormat newFormat);
    void setFramerate(int newFrameRate);

private:
    FrameFormat format = FrameFormat_NONE;
    int frameRate = 0;
    CalibrationInternal calibration;
    HardwareVersionInternal calibrationHardwareVersion;
    std::vector<Utils::SmartPtr<IO::xuRequest>> commands;
};

} // namespace Zentara
