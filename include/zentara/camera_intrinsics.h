#pragma once

#include <cstdint>

namespace Zentara {

/// A camera's lens model: pinhole projection with radial and tangential distortion, for one image size.
/// Focal lengths and the principal point are in pixels of that size, the distortion coefficients have no
/// unit.
struct CameraIntrinsics {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    float fx = 0;
    float fy = 0;
    float cx = 0;
    float cy = 0;
    float k1 = 0; ///< radial, second power of the radius
    float k2 = 0; ///< radial, fourth power
    float k3 = 0; ///< radial, sixth power
    float p1 = 0; ///< tangential
    float p2 = 0; ///< tangential

    friend bool operator==(const CameraIntrinsics&, const CameraIntrinsics&) = default;
};

} // namespace Zentara
