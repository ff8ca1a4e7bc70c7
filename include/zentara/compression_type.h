#pragma once

#include <cstdint>

namespace Zentara {

/// How colour frames are packed on their way from the camera.
enum CompressionType : std::int32_t {
    CompressionType_NONE = 0, ///< YUY2
    CompressionType_MJPEG = 1,
    CompressionType_H264 = 2,
};

} // namespace Zentara
