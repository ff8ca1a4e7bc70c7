#pragma once

#include <cstdint>

namespace Zentara {

/// The vocabulary of depth nodes. Not to be constructed.
class DepthNode {
public:
    DepthNode() = delete;

    /// One of the two ways in which a depth camera works, each with its own corrections. The two modes serve
    /// as indices of per-mode records.
    enum CameraMode : std::int32_t {
        CameraMode_NONE = -1,
        CameraMode_0 = 0,
        CameraMode_1 = 1,
    };
};

} // namespace Zentara
