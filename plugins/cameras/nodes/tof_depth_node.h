#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/core/calibration_sources.h>
#include <zentara/core/depth_node_interface.h>

namespace Zentara::Cameras {

/// The depth stream of a described time-of-flight camera, whichever controller it has. What it delivers stands in
/// depth_frame.h.
///
/// `initialize` opens the device, binds the chip that the description names, starts the parameters and reads the
/// camera's storage; one that cannot be read is as good as an empty one. Without a lens model in it the description's
/// counts, and one warning in the log names the camera and says so. Starting sends the pre-common commands,
/// those of the mode and the post-common ones, then starts the device; stopping does it backwards. Disposing stops.
/// The host lets its reader end before it disposes.
class TofDepthNode final : public Core::DepthNodeInterface, public Core::CalibrationSources {
public:
    TofDepthNode();
    ~TofDepthNode() override;

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store, DepthProcessorData* data) override;
    void dispose() override;

    /// Those of the bridge, or of the time-of-flight controller where the bridge tells none.
    void getVersions(int& majorVersion, int& minorVersion) override;
    void
    configurePeriodicOperations(std::vector<Utils::SmartPtr<Core::PeriodicOperation>> operations) override;

    /// One that fails leaves the camera stopped.
    /// \throws Plugin::ConfigurationPluginException for a mode that `getConfigurations` does not list by its name,
    ///         Plugin::InvalidOperationPluginException while it streams
    void enableStreaming(Utils::SmartPtr<DepthBaseConfiguration> configuration) override;
    /// Does nothing while it does not stream.
    void disableStreaming() override;

    /// \throws as parameter 0 does
    void setIlluminationLevel(DepthNode::CameraMode mode, int level) override;

    /// \throws Plugin::InvalidOperationPluginException while it does not stream,
    ///         Plugin::ConfigurationPluginException for a mode with frames of another size or rate
    void setConfiguration(Utils::SmartPtr<DepthBaseConfiguration> configuration) override;
    void setCalibration(CalibrationInternal* calibration) override;
    [[nodiscard]] float getPhaseScaling() override;

    /// Parameter requests go to the parameters, all others to the chip.
    void process(Utils::SmartPtr<IO::xuRequest> request) override;
    void setDiagnosticData(DiagnosticData data) override;

    /// While it streams, what the periodic operations have read last; if there is nothing, the sensors now.
    [[nodiscard]] SensorValueArray readTemperatures() override;
    /// While it streams, the last reading of the operation if it is a periodic one; else the sensor now.
    /// \throws Plugin::ArgumentPluginException for null
    [[nodiscard]] AccelerationInternal
    readAccelerometer(Core::AccelerometerPeriodicOperation* operation) override;
    /// The sensor now. \throws Plugin::ArgumentPluginException for null
    [[nodiscard]] SensorValueArray readTemperature(Core::TemperaturePeriodicOperation* operation) override;
    [[nodiscard]] float getRange() override;
    [[nodiscard]] FrameFormat getDVPFrameMode() override;
    [[nodiscard]] StereoCameraParametersArray getImageRegistrationCalibration() override;
    [[nodiscard]] SensorValueArray getTemperatureCalibration(DepthNode::CameraMode mode) override;
    [[nodiscard]] TemperatureCalibration getTemperatureCalibration() override;
    [[nodiscard]] TemperatureCompensation getTemperatureCompensation() override;
    [[nodiscard]] CyclicErrorCorrection getCyclicErrorCorrection() override;
    [[nodiscard]] DiagnosticData getDiagnosticData() override;
    [[nodiscard]] std::string getSerialNumber() override;
    [[nodiscard]] AccelerationInternal getAccelerometerCalibration() override;

    [[nodiscard]] Core::CalibrationSource getCalibrationSource(Core::CalibrationPart part) const override;
    [[nodiscard]] std::string getCalibrationFailure() const override;

    /// Without force the storage is read only if that has failed before.
    void reloadROMLayout(bool force) override;

    /// With the calibration of the camera.
    [[nodiscard]] std::vector<Utils::SmartPtr<DepthBaseConfiguration>> getConfigurations() override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

private:
    struct Camera;

    Camera& require(const char* operation) const;
    void stop() noexcept;
    void loadStorage();

    std::unique_ptr<Camera> camera; ///< null unless initialised
};

} // namespace Zentara::Cameras
