#pragma once

#include <cstdint>

#include <zentara/export.h>

namespace Zentara::IO {

/// The operations on a device that travel as requests, each for the operation of the same name of `AVDeviceInterface`,
/// `VideoDeviceInterface` or `AudioDeviceInterface`. The mixed case of the names is part of the vocabulary: the library
/// prints them.
enum RequestType : std::int32_t {
    RequestType_NONE = 0, ///< asks the worker to stop
    RequestType_THREAD_INITIALIZE = 1,
    RequestType_THREAD_UNINITIALIZE = 2,
    RequestType_XUSEND = 3,
    RequestType_XURECV = 4,
    RequestType_OPEN = 5,
    RequestType_CLOSE = 6,
    RequestType_ENABLE_DEPTH = 7,
    RequestType_ENABLE_COLOR = 8,
    RequestType_ENABLE_AUDIO = 9,
    RequestType_DISABLE = 10,
    RequestType_SET_CAMERA_CONTROL = 11,
    RequestType_GET_CAMERA_CONTROL_RANGES = 12,
    RequestType_GET_COLOR_CONFIGURATIONS = 13,
    RequestType_GET_AUDIO_DEFAULT_CONFIGURATION = 14,
    RequestType_XULEN = 15,
    RequestType_SET_AUDIO_LEVEL = 16,
    RequestType_SET_AUDIO_MUTE = 17,
    RequestType_ReadControlTransfer = 18,
    RequestType_WriteControlTransfer = 19,
    RequestType_WriteBulkTransfer = 20,
    RequestType_PauseStreaming = 21,
    RequestType_ResumeStreaming = 22,
    RequestType_RegionOfInterest = 23, ///< has no effect when it goes through the worker
    RequestType_OutputFormat = 24,     ///< has no effect when it goes through the worker
    RequestType_XUSETUP = 25,
};

/// The enumerator's name, for example "RequestType_XUSEND"; "RequestType_UNKNOWN" for any other value. Safe.
[[nodiscard]] ZENTARA_API const char* RequestType_toString(RequestType type) noexcept;

} // namespace Zentara::IO
