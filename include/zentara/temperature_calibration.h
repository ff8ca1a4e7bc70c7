#pragma once

#include <array>

#include <zentara/depth_node.h>
#include <zentara/sensor_value_array.h>

namespace Zentara {

/// At which temperatures a depth camera was calibrated: for each camera mode what its sensors read then, in
/// degrees Celsius.
/// A copyable value; starts empty. Separate.
struct TemperatureCalibration {
    std::array<SensorValueArray, 2> modes; ///< the mode is the index

    /// The set of one mode, as a copy; an empty one for a mode other than 0 and 1.
    [[nodiscard]] SensorValueArray get(DepthNode::CameraMode mode) const {
        return mode == DepthNode::CameraMode_0 || mode == DepthNode::CameraMode_1 ? modes[mode]
                                                                                  : SensorValueArray();
    }

    friend bool operator==(const TemperatureCalibration&, const TemperatureCalibration&) = default;
};

} // namespace Zentara
