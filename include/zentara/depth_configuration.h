#pragma once

#include <zentara/depth_base_configuration.h>
#include <zentara/depth_node.h>

namespace Zentara {

/// A depth mode, named "DEFF", frame format, "FR", frame rate, "CM", camera mode, "S", saturation, each by its number:
/// for example "DEFF2FR60CM1S0". Every setter derives the name anew, and none checks its value. Separate.
class ZENTARA_API DepthConfiguration : public DepthBaseConfiguration {
public:
    /// Frame format, frame rate and camera mode 0, no saturation.
    DepthConfiguration();

    /// \param frameRate frames a second
    /// \param saturation whether saturated pixels are marked
    /// \param phaseDelay where the calibration's phase offset and phase delay start: steps of phase, 65,536 to a turn
    DepthConfiguration(FrameFormat format, int frameRate, DepthNode::CameraMode mode, bool saturation,
                       std::int16_t phaseDelay);
    DepthConfiguration(const DepthConfiguration&);
    DepthConfiguration& operator=(const DepthConfiguration&);

    void setFrameFormat(FrameFormat newFormat);
    void setFramerate(int newFrameRate);

    /// Whose corrections hold for the mode.
    [[nodiscard]] DepthNode::CameraMode getCameraMode() const;
    void setCameraMode(DepthNode::CameraMode newMode);

    /// Whether pixels that got too much light are marked.
    [[nodiscard]] bool getSaturation() const;
    void setSaturation(bool newSaturation);

protected:
    ~DepthConfiguration() override;

private:
    void rename();

    DepthNode::CameraMode mode = DepthNode::CameraMode_0;
    bool saturation = false;
};

} // namespace Zentara
