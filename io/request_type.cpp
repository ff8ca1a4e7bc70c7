#include <zentara/io/request_type.h>

#include <iterator>

namespace Zentara::IO {

namespace {

// In the order of the values.
constexpr const char* names[] = {
    "RequestType_NONE",
    "RequestType_THREAD_INITIALIZE",
    "RequestType_THREAD_UNINITIALIZE",
    "RequestType_XUSEND",
    "RequestType_XURECV",
    "RequestType_OPEN",
    "RequestType_CLOSE",
    "RequestType_ENABLE_DEPTH",
    "RequestType_ENABLE_COLOR",
    "RequestType_ENABLE_AUDIO",
    "RequestType_DISABLE",
    "RequestType_SET_CAMERA_CONTROL",
    "RequestType_GET_CAMERA_CONTROL_RANGES",
    "RequestType_GET_COLOR_CONFIGURATIONS",
    "RequestType_GET_AUDIO_DEFAULT_CONFIGURATION",
    "RequestType_XULEN",
    "RequestType_SET_AUDIO_LEVEL",
    "RequestType_SET_AUDIO_MUTE",
    "RequestType_ReadControlTransfer",
    "RequestType_WriteControlTransfer",
    "RequestType_WriteBulkTransfer",
    "RequestType_PauseStreaming",
    "RequestType_ResumeStreaming",
    "RequestType_RegionOfInterest",
    "RequestType_OutputFormat",
    "RequestType_XUSETUP",
};

} // namespace

const char* RequestType_toString(RequestType type) noexcept {
    const auto index = static_cast<std::uint32_t>(type);
    return index < std::size(names) ? names[index] : "RequestType_UNKNOWN";
}

} // namespace Zentara::IO
