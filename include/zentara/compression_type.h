#pragma once

#include <cstdint>

namespace Zentara {

/// How colour frames are packed on their way from the camera. The number is part of a mode's name, so it stays.
enum CompressionType : std::int32_t {
    CompressionType_NONE = 0,  ///< YUY2: Y0 U Y1 V, eight bits each, for two pixels of a row
    CompressionType_MJPEG = 1, ///< one JPEG picture a frame; nothing here decodes it
    CompressionType_H264 = 2,  ///< a stream of H.264; nothing here decodes it
};

} // namespace Zentara
