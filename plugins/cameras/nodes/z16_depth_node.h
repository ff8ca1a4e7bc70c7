#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/core/calibration_sources.h>
#include <zentara/core/depth_node_interface.h>

namespace Zentara::Cameras {

/// The depth stream of a camera that measures depth itself and delivers it as 16-bit values (Z16), without a controller
/// that a host must know. The description says how many micrometres a step is; modes, lens models, extrinsics and
/// corrections are the description's too. Each frame is three planes of the mode's size, as depth_frame.h has them: millimetres,
/// rounded, 0 where there is no depth or it is beyond 65,535 mm; confidence (the device's second plane if it sends one,
/// else 1000 where there is depth); and a phase of 0.
class Z16DepthNode : public Core::DepthNodeInterface, public Core::CalibrationSources {
public:
    Z16DepthNode();
    ~Z16DepthNode() override;

    /// \throws Plugin::InitializationPluginException for a description without a depth unit, or without a mode of a
    ///         known size
    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store, DepthProcessorData* data) override;
    void dispose() override;

    /// \throws Plugin::ConfigurationPluginException for a mode that `getConfigurations` does not list by its name,
    ///         Plugin::InvalidOperationPluginException while it streams
    void enableStreaming(Utils::SmartPtr<DepthBaseConfiguration> configuration) override;
    /// Does nothing while it does not stream.
    void disableStreaming() override;

    /// The description's.
    [[nodiscard]] StereoCameraParametersArray getImageRegistrationCalibration() override;
    [[nodiscard]] TemperatureCompensation getTemperatureCompensation() override;
    [[nodiscard]] CyclicErrorCorrection getCyclicErrorCorrection() override;
    /// 0: nobody tells what a step of phase is.
    [[nodiscard]] float getPhaseScaling() override;
    /// The one that the bus told.
    [[nodiscard]] std::string getSerialNumber() override;
    [[nodiscard]] Core::CalibrationSource getCalibrationSource(Core::CalibrationPart part) const override;
    /// Empty: there is nothing to read.
    [[nodiscard]] std::string getCalibrationFailure() const override;
    [[nodiscard]] std::vector<Utils::SmartPtr<DepthBaseConfiguration>> getConfigurations() override;

    /// \throws Plugin::IOPluginException when what the device delivers is neither one nor two planes of the mode's size
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

protected:
    /// \param generic the device alone says which modes there are, and a step is a millimetre
    Z16DepthNode(GUID guid, bool generic);

private:
    struct Camera;

    Camera& require(const char* operation) const;
    void stop() noexcept;

    const bool generic;
    std::unique_ptr<Camera> camera; ///< null unless initialised
};

/// The depth stream of a device that no description names: the modes are those that the device reports for a node of
/// depth, and a step of its values is taken for a millimetre, which the log says. There is no lens model. Of its store it
/// needs the device's implementation alone.
class GenericDepthNode final : public Z16DepthNode {
public:
    GenericDepthNode();
};

} // namespace Zentara::Cameras
