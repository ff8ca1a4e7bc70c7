#pragma once

#include <cstdint>

namespace Zentara {

/// One lens model: pinhole projection with radial (k1, k2, k3) and tangential (p1, p2) distortion, for images
/// of one size. The same numbers as `CameraIntrinsics`, with sizes of 32 bits: the form in which a request carries
/// them to the camera. A copyable value. Separate.
struct IntrinsicParametersInternal {
    std::uint32_t width = 0;  ///< pixels
    std::uint32_t height = 0; ///< pixels
    float fx = 0;             ///< focal length, pixels
    float fy = 0;             ///< focal length, pixels
    float cx = 0;             ///< principal point: its column, pixels
    float cy = 0;             ///< principal point: its row, pixels
    float k1 = 0;             ///< radial, of the radius' second power; no unit, as the next four
    float k2 = 0;             ///< radial, fourth power
    float k3 = 0;             ///< radial, sixth power
    float p1 = 0;             ///< tangential
    float p2 = 0;             ///< tangential

    friend bool operator==(const IntrinsicParametersInternal&, const IntrinsicParametersInternal&) = default;
};

} // namespace Zentara
