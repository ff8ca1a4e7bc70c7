#pragma once

namespace Zentara {

/// What an accelerometer measures, or the offsets that calibrate it, along the camera's axes; in units of
/// standard gravity. A copyable value.
struct AccelerationInternal {
    float x = 0; ///< to the right
    float y = 0; ///< down
    float z = 0; ///< into the scene

    friend bool operator==(const AccelerationInternal&, const AccelerationInternal&) = default;
};

} // namespace Zentara
