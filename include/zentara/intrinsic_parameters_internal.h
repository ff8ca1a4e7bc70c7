#pragma once

#include <cstdint>

namespace Zentara {

/// One lens model: pinhole projection with radial (k1, k2, k3) and tangential (p1, p2) distortion, for images
/// of one size.
struct IntrinsicParametersInternal {
    std::uint32_t width = 0;  ///< pixels
    std::uint32_t height = 0; ///< pixels
    float fx = 0;             ///< focal length, pixels
    float fy = 0;             ///< focal length, pixels
    float cx = 0;             ///< principal point, pixels
    float cy = 0;             ///< principal point, pixels
    float k1 = 0;
    float k2 = 0;
    float k3 = 0;
    float p1 = 0;
    float p2 = 0;

    friend bool operator==(const IntrinsicParametersInternal&, const IntrinsicParametersInternal&) = default;
};

} // namespace Zentara
