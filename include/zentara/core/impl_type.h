#pragma once

#include <cstdint>

namespace Zentara::Core {

/// The interface kind that an implementation offers: what a plug-in reports from "getImplType" and what a
/// host names when it asks the PluginManager for an object. A plug-in states its kind as a plain 32-bit
/// integer, so any value may turn up; the manager accepts the kinds 1 to 6, 8 and 9.
enum ImplType : std::int32_t {
    ImplType_NONE = 0,                  ///< no implementation
    ImplType_DEPTH_NODE = 1,            ///< `Core::DepthNodeInterface`: a stream of depth, for the host
    ImplType_COLOR_NODE = 2,            ///< `Core::ColorNodeInterface`: a stream of pictures
    ImplType_AUDIO_NODE = 3,            ///< `Core::AudioNodeInterface`: a stream of sound
    ImplType_AUDIO_DEVICE = 4,          ///< `IO::AudioDeviceInterface`: moves a node's bytes
    ImplType_VIDEO_DEVICE = 5,          ///< `IO::VideoDeviceInterface`: the same, for depth and colour
    ImplType_ENUMERATOR = 6,            ///< `IO::EnumeratorInterface`: finds nodes on a bus
    ImplType_CAMERA_MODEL = 7,          ///< names a camera model; never a plug-in
    ImplType_DESCRIPTOR_STORE = 8,      ///< `Core::DescriptorStoreInterface`: says what a camera is
    ImplType_PARAMETER_INTERPRETER = 9, ///< reached through its own exports; its factory is never called
};

/// What a plug-in of that kind is, for people: "depth node"; "unknown" for a number that is none of the eight. Safe.
[[nodiscard]] constexpr const char* implTypeName(std::int32_t type) noexcept {
    switch (type) {
    case ImplType_DEPTH_NODE:
        return "depth node";
    case ImplType_COLOR_NODE:
        return "colour node";
    case ImplType_AUDIO_NODE:
        return "audio node";
    case ImplType_AUDIO_DEVICE:
        return "audio device";
    case ImplType_VIDEO_DEVICE:
        return "video device";
    case ImplType_ENUMERATOR:
        return "enumerator";
    case ImplType_DESCRIPTOR_STORE:
        return "descriptor store";
    case ImplType_PARAMETER_INTERPRETER:
        return "parameter interpreter";
    default:
        return "unknown";
    }
}

} // namespace Zentara::Core
