#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zentara/core/color_node_interface.h>

namespace Zentara::Cameras {

/// Whether the flags of a description name the control. Each has a bit of its own, but a device may have more controls
/// than there are bits, and those are not named.
[[nodiscard]] bool isNamed(std::uint64_t flags, CameraControlsEnum control) noexcept;

/// The colour stream of a described camera: frames as its device delivers them. Starting and stopping send the node's
/// commands as a depth node's do. Settings of the camera that are made while nothing streams count from the next
/// start on.
class ColorNode : public Core::ColorNodeInterface {
public:
    ColorNode();
    ~ColorNode() override;

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store, ColorProcessorData* data) override;
    void dispose() override;

    /// \throws Plugin::ConfigurationPluginException for a mode that `getConfigurations` does not list by its name,
    ///         Plugin::InvalidOperationPluginException while it streams
    void enableStreaming(Utils::SmartPtr<ColorConfiguration> configuration) override;
    /// Does nothing while it does not stream.
    void disableStreaming() override;

    /// Those of the description, or of the device for a description without.
    [[nodiscard]] std::vector<Utils::SmartPtr<ColorConfiguration>> getConfigurations() override;

    /// Of the device's settings those that the description's flags name, one bit a control.
    [[nodiscard]] CameraControlRanges getCameraControlRanges() override;
    /// \throws Plugin::ArgumentPluginException for a control that the camera does not have, or a value outside its
    ///         range
    void setCameraControl(CameraControlsEnum control, CameraControlValue value) override;
    [[nodiscard]] CameraControls getCameraControls() override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

protected:
    /// \param generic the device alone says which controls there are
    ColorNode(GUID guid, bool generic);

private:
    struct Camera;

    Camera& require(const char* operation);
    void stop() noexcept;

    const bool generic;
    std::unique_ptr<Camera> camera; ///< null unless initialised
};

/// The colour stream of a device that no description names: modes, controls and frames are what the device itself
/// reports. Of its store it needs the device's implementation alone.
class GenericColorNode final : public ColorNode {
public:
    GenericColorNode();
};

} // namespace Zentara::Cameras
