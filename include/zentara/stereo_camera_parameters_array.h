#pragma once

#include <cstdint>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>

namespace Zentara {

/// A list of calibration records with the number of records that the camera is meant to have.
template<typename T>
struct CalibrationBlock {
    std::uint32_t count = 1; ///< 1 also while the list is still empty
    std::vector<T> values;

    friend bool operator==(const CalibrationBlock&, const CalibrationBlock&) = default;
};

/// What lays the colour image over the depth image: the lens models of both cameras, one for each image
/// size, and the transform between them. A copyable value.
struct StereoCameraParametersArray {
    CalibrationBlock<CameraIntrinsics> depthIntrinsics;
    CalibrationBlock<CameraIntrinsics> colorIntrinsics;
    CalibrationBlock<ExtrinsicParametersInternal> extrinsics;

    /// Whether nothing is known.
    [[nodiscard]] bool empty() const noexcept {
        return depthIntrinsics.values.empty() && colorIntrinsics.values.empty() && extrinsics.values.empty();
    }

    friend bool operator==(const StereoCameraParametersArray&, const StereoCameraParametersArray&) = default;
};

} // namespace Zentara
