#pragma once

#include <cstdint>

namespace Zentara {

/// The vocabulary of depth nodes. Not to be constructed.
class DepthNode {
public:
    DepthNode() = delete;

    /// One of the two ways in which a depth camera works, each with its own corrections: phase delay, temperature
    /// compensation, cyclic error. The two modes serve as indices of per-mode records. What sets them apart is the
    /// camera's affair.
    enum CameraMode : std::int32_t {
        CameraMode_NONE = -1, ///< none chosen; never the mode of a stream
        CameraMode_0 = 0,
        CameraMode_1 = 1,
    };
};

} // namespace Zentara
