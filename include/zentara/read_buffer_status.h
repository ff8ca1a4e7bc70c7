#pragma once

#include <cstdint>

namespace Zentara {

/// How a device's or a node's `readBuffer` ended. A back-end may answer with values of its own; they are
/// passed on unchanged.
enum ReadBufferStatus : std::int32_t {
    ReadBufferStatus_OK = 0,        ///< a frame lies in the buffer
    ReadBufferStatus_TIMEOUT = 1,   ///< no frame came in time; try again
    ReadBufferStatus_TOO_SMALL = 2, ///< the buffer does not hold a frame; the size needed is reported
    ReadBufferStatus_NOT_STREAMING = 3,
    ReadBufferStatus_DISCONNECTED = 4, ///< the device is gone
    ReadBufferStatus_FAILED = 5,       ///< the transfer failed; the next frame may come through
};

} // namespace Zentara
