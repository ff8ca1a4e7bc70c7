#pragma once

#include <cstdint>
#include <vector>

#include <zentara/depth_node.h>
#include <zentara/export.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class DepthBaseConfiguration;
}

namespace Zentara::IO {

/// The phase delay of one depth mode. A copyable value. Separate.
struct CalibrationElement {
    std::uint32_t frameRate = 0;  ///< frames per second
    std::uint32_t cameraMode = 0; ///< a `DepthNode::CameraMode`
    std::int16_t phaseDelay = 0;  ///< steps of phase, 65,536 to a turn

    friend bool operator==(const CalibrationElement&, const CalibrationElement&) = default;
};

/// The phase delays of a camera: for 25, 30, 50 and 60 frames per second in camera mode 0, then the same in
/// mode 1. A copyable value. Separate.
class ZENTARA_API CalibrationData {
public:
    /// One phase delay for each camera mode, in steps of phase.
    CalibrationData(short mode0, short mode1);

    /// One for each element: eight values in the order above. With any other number the first four serve both
    /// modes; missing ones are 0.
    explicit CalibrationData(std::vector<short> delays);

    /// The phase delay of the first element with the configuration's frame rate and camera mode; 0 if there
    /// is none, for null, and for a configuration without a camera mode.
    [[nodiscard]] short getPhaseDelay(Utils::SmartPtr<DepthBaseConfiguration> configuration) const;

private:
    std::vector<CalibrationElement> elements; ///< always eight, in the order above
};

} // namespace Zentara::IO
