#pragma once

namespace Zentara {

/// The rigid transform from the depth camera to the colour camera: a point p in the coordinates of the one becomes
/// R p + T in those of the other, both with x to the right, y down and z into the scene. Starts with all twelve
/// numbers 0, which is no transform at all: a camera without extrinsics. A copyable value. Separate.
struct ExtrinsicParametersInternal {
    float r11 = 0, r12 = 0, r13 = 0; ///< the first row of the rotation matrix R, no unit
    float r21 = 0, r22 = 0, r23 = 0; ///< the second
    float r31 = 0, r32 = 0, r33 = 0; ///< the third
    float t1 = 0, t2 = 0, t3 = 0;    ///< the translation T, millimetres

    friend bool operator==(const ExtrinsicParametersInternal&, const ExtrinsicParametersInternal&) = default;
};

} // namespace Zentara
