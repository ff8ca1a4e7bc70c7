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
/// requests that put the camera into the mode. Subclasses name it. A copy has a list of its own, of the same requests.
/// Separate.
class ZENTARA_API DepthBaseConfiguration : public Configuration {
public:
    /// Depth configurations are equal exactly when their names are; false for null.
    [[nodiscard]] virtual bool isEqual(const DepthBaseConfiguration* other) const;

    [[nodiscard]] FrameFormat getFrameFormat() const;

    /// Frames a second.
    [[nodiscard]] int getFramerate() const;

    /// What the mode's depth is corrected by, and the modules that it was measured with: all 0 where nobody said. Neither
    /// is part of the name, so modes with other calibrations are equal.
    [[nodiscard]] CalibrationInternal getCalibration() const;
    void setCalibration(const CalibrationInternal& newCalibration);
    [[nodiscard]] HardwareVersionInternal getCalibrationHardwareVersion() const;
    void setCalibrationHardwareVersion(const HardwareVersionInternal& newVersion);

    /// The requests in the order in which they are sent. The list belongs to the configuration, and is lent as long as
    /// that lives; the requests are shared, and none may be null when they are sent.
    [[nodiscard]] std::vector<Utils::SmartPtr<IO::xuRequest>>& getCommands();
    [[nodiscard]] const std::vector<Utils::SmartPtr<IO::xuRequest>>& getCommands() const;
    void setCommands(std::vector<Utils::SmartPtr<IO::xuRequest>> newCommands);

protected:
    DepthBaseConfiguration(std::string name, ConfigurationType type);

    /// The calibration starts with `phaseDelay` and no drift compensation.
    /// \param frameRate frames a second \param phaseDelay steps of phase, 65,536 to a turn
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
    int frameRate = 0; ///< frames a second
    CalibrationInternal calibration;
    HardwareVersionInternal calibrationHardwareVersion;
    std::vector<Utils::SmartPtr<IO::xuRequest>> commands; ///< in the order of sending
};

} // namespace Zentara
