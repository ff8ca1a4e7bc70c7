#pragma once

#include <cstdint>

namespace Zentara {

/// How a device's or a node's `readBuffer` ended.
///
/// What may happen to a running stream comes as a status. A plug-in exception tells what is no matter of the stream: a
/// null pointer (Argument), a node that was not initialised or a proxy that was disposed of (InvalidOperation), bytes
/// that are no frame and other faults of the device (IO, Streaming). It ends nothing: the stream stays as it was, and
/// after one of the last two kinds the next call may succeed.
///
/// The call waits on its caller's thread, and the library puts no limit to that. A back-end does: it returns within 1 s,
/// with TIMEOUT when no frame has come, and at once when another thread ends the stream. A host therefore
/// - reads on a thread of its own, and has the others end the wait by `disableStreaming`;
/// - decides itself after how many TIMEOUT or FAILED in a row the camera counts as silent;
/// - waits for that thread, when it ends the stream, for a few seconds only. One that is not back then is held by a
///   device that hangs: neither it nor the node can be given back safely, and what is left is to end the process.
///
/// A back-end may answer with values of its own; they are passed on unchanged. Who does not know them takes them for
/// failures.
enum ReadBufferStatus : std::int32_t {
    ReadBufferStatus_OK = 0,        ///< a frame lies in the buffer
    ReadBufferStatus_TIMEOUT = 1,   ///< no frame came in time; call again
    ReadBufferStatus_TOO_SMALL = 2, ///< the length is what a frame needs; call again with as large a buffer
    ReadBufferStatus_NOT_STREAMING =
        3, ///< no stream runs, or it was ended during the wait; nothing more will come
    ReadBufferStatus_DISCONNECTED = 4, ///< the device is gone for good; end the stream and give the node back
    ReadBufferStatus_FAILED = 5,       ///< the transfer failed; call again, the next frame may come through
};

} // namespace Zentara
