#pragma once

#include <memory>
#include <string>

#include <zentara/acceleration_internal.h>
#include <zentara/depth_node.h>
#include <zentara/diagnostic_data.h>
#include <zentara/export.h>
#include <zentara/sensor_value_array.h>
#include <zentara/stereo_camera_parameters_array.h>
#include <zentara/temperature_calibration.h>
#include <zentara/temperature_compensation.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class DepthBaseConfiguration;
}

namespace Zentara::Core {
class DescriptorStoreRO;
}

namespace Zentara::IO {

class CalibrationData;

/// The calibration and identity of a camera as a depth plug-in needs it, with a flag for what is really
/// there. This class fills it from a descriptor store, which knows temperature calibration and
/// compensation; classes for cameras with more in their ROM derive from it. Copies are deep. Separate.
class ZENTARA_API BaseROMLayout {
public:
    /// Reads the store; null, or one that does not support it, leaves the defaults. The pointer is kept,
    /// and read only here.
    explicit BaseROMLayout(Core::DescriptorStoreRO* store);
    BaseROMLayout(const BaseROMLayout&);
    BaseROMLayout& operator=(const BaseROMLayout&);
    virtual ~BaseROMLayout();

    /// Does nothing in this class.
    virtual void setDiagnosticData(DiagnosticData data);

    // Whether the camera has it: what a getter answers without it is empty or 0, and says nothing. From a descriptor
    // store only the last can be true.
    [[nodiscard]] bool hasPhaseDelay() const;
    [[nodiscard]] bool hasAccelerometerCalibration() const;
    [[nodiscard]] bool hasImageRegistrationCalibration() const;
    [[nodiscard]] bool hasSerialNumber() const;
    [[nodiscard]] bool hasProductionID() const;
    [[nodiscard]] bool hasTemperatureCalibration() const;

    /// Steps of phase, 65,536 to a turn: see `CalibrationData::getPhaseDelay`; 0 for every configuration unless a subclass knows better.
    [[nodiscard]] short getPhaseDelay(Utils::SmartPtr<DepthBaseConfiguration> configuration) const;
    [[nodiscard]] AccelerationInternal getAccelerometerCalibration() const; ///< offsets, in g
    /// Lens models in pixels, the transform from the depth to the colour camera in millimetres.
    [[nodiscard]] StereoCameraParametersArray getImageRegistrationCalibration() const;
    /// What the sensors read at calibration, degrees Celsius, for each camera mode.
    [[nodiscard]] TemperatureCalibration getTemperatureCalibration() const;

    /// Empty for a mode other than 0 and 1.
    [[nodiscard]] SensorValueArray getTemperatureCalibration(DepthNode::CameraMode mode) const;
    [[nodiscard]] TemperatureCompensation getTemperatureCompensation() const;
    [[nodiscard]] DiagnosticData getDiagnosticData() const;
    [[nodiscard]] std::string getSerialNumber() const;
    [[nodiscard]] std::string getProductionID() const;

protected:
    /// For subclasses that find more in a camera's ROM. All but the last two raise the flag that goes with
    /// them.
    void setPhaseDelays(const CalibrationData& delays);
    void setAccelerometerCalibration(const AccelerationInternal& calibration);
    void setImageRegistrationCalibration(const StereoCameraParametersArray& parameters);
    void setTemperatureCalibration(const TemperatureCalibration& calibration);
    void setSerialNumber(const std::string& number);
    void setProductionID(const std::string& id);
    void setTemperatureCompensation(const TemperatureCompensation& compensation);
    void storeDiagnosticData(DiagnosticData data);

    /// What the constructor was given; not owned.
    [[nodiscard]] Core::DescriptorStoreRO* getDescriptorStore() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
