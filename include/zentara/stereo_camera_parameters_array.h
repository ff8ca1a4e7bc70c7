#pragma once

#include <cstdint>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>

namespace Zentara {

/// A list of calibration records with the number of records that the camera is meant to have. What counts is the list:
/// who fills it sets the number as well. A copyable value. Separate.
template<typename T>
struct CalibrationBlock {
    std::uint32_t count = 1; ///< 1 also while the list is still empty
    std::vector<T> values;   ///< what is there

    friend bool operator==(const CalibrationBlock&, const CalibrationBlock&) = default;
};

/// What lays the colour image over the depth image: the lens models of both cameras, one for each image
/// size, and the transform between them. A copyable value. Separate.
struct StereoCameraParametersArray {
    CalibrationBlock<CameraIntrinsics> depthIntrinsics;       ///< pixels of each model's own size
    CalibrationBlock<CameraIntrinsics> colorIntrinsics;       ///< the same of the colour camera
    CalibrationBlock<ExtrinsicParametersInternal> extrinsics; ///< from depth to colour, millimetres

    /// Whether nothing is known.
    [[nodiscard]] bool empty() const noexcept {
        return depthIntrinsics.values.empty() && colorIntrinsics.values.empty() && extrinsics.values.empty();
    }

    friend bool operator==(const StereoCameraParametersArray&, const StereoCameraParametersArray&) = default;
};

} // namespace Zentara
