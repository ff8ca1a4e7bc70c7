#pragma once

#include <cstdint>

namespace Zentara {

/// A camera's lens model: pinhole projection with radial and tangential distortion after Brown and Conrady, for one
/// image size. A point (X, Y, Z) in the camera's coordinates (x right, y down, z into the scene) is seen at the pixel
///
///     u = fx (x (1 + k1 r2 + k2 r4 + k3 r6) + 2 p1 xy + p2 (r2 + 2 x2)) + cx      x = X/Z, y = Y/Z, r2 = x2 + y2
///     v = fy (y (1 + k1 r2 + k2 r4 + k3 r6) + p1 (r2 + 2 y2) + 2 p2 xy) + cy
///
/// where (0, 0) is the centre of the upper left pixel. Focal lengths and the principal point are in pixels of that
/// size, the distortion coefficients have no unit. A size or a focal length of 0 is no model: nobody has measured one.
/// A copyable value. Separate.
struct CameraIntrinsics {
    std::uint16_t width = 0;  ///< of the images that it is for, pixels
    std::uint16_t height = 0; ///< pixels
    float fx = 0;             ///< focal length in columns, pixels
    float fy = 0;             ///< focal length in rows, pixels
    float cx = 0;             ///< principal point: its column
    float cy = 0;             ///< principal point: its row
    float k1 = 0;             ///< radial, second power of the radius
    float k2 = 0;             ///< radial, fourth power
    float k3 = 0;             ///< radial, sixth power
    float p1 = 0;             ///< tangential, as in the formula
    float p2 = 0;             ///< tangential, as in the formula

    friend bool operator==(const CameraIntrinsics&, const CameraIntrinsics&) = default;
};

} // namespace Zentara
