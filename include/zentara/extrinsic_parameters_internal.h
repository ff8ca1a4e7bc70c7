#pragma once

namespace Zentara {

/// The rigid transform from the depth camera to the colour camera: a point p becomes R p + T. Starts with all
/// twelve numbers 0, which is no transform at all: a camera without extrinsics. A copyable value.
struct ExtrinsicParametersInternal {
    float r11 = 0, r12 = 0, r13 = 0; ///< the rotation matrix, row by row
    float r21 = 0, r22 = 0, r23 = 0;
    float r31 = 0, r32 = 0, r33 = 0;
    float t1 = 0, t2 = 0, t3 = 0; ///< the translation, millimetres

    friend bool operator==(const ExtrinsicParametersInternal&, const ExtrinsicParametersInternal&) = default;
};

} // namespace Zentara
