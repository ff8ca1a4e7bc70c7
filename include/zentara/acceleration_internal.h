#pragma once

namespace Zentara {

/// What an accelerometer measures, or the offsets that calibrate it, along the camera's axes; in units of
/// standard gravity (g, 9.80665 metres per second squared). Nothing bounds the numbers. All 0 is also what a
/// depth node without an accelerometer answers. A copyable value. Separate.
struct AccelerationInternal {
    float x = 0; ///< to the right, g
    float y = 0; ///< down, g
    float z = 0; ///< into the scene, g

    friend bool operator==(const AccelerationInternal&, const AccelerationInternal&) = default;
};

} // namespace Zentara
