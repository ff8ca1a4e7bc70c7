#include <zentara/core/guids.h>

#include <iterator>

#include <zentara/utils/format.h>

namespace Zentara::Core {

namespace {

/// Searched from the top.
constexpr WellKnownGuid table[] = {
    {"ZT325V2AUDIO_IMPL", Guids::ZT325V2AUDIO_IMPL, ImplType_AUDIO_NODE},
    {"ZT311", Guids::ZT311, ImplType_CAMERA_MODEL},
    {"NULL_IMPL", Guids::NULL_IMPL, ImplType_NONE},
    {"KV_DESCRIPTOR_STORE", Guids::KV_DESCRIPTOR_STORE, ImplType_DESCRIPTOR_STORE},
    {"VF0780", Guids::VF0780, ImplType_CAMERA_MODEL},
    {"ZT325", Guids::ZT325, ImplType_CAMERA_MODEL},
    {"ZT310", Guids::ZT310, ImplType_CAMERA_MODEL},
    {"ZT325V1", Guids::ZT325V1, ImplType_CAMERA_MODEL},
    {"IMP_ZT327", Guids::IMP_ZT327, ImplType_CAMERA_MODEL},
    {"WMFVIDEO_IMPL", Guids::WMFVIDEO_IMPL, ImplType_VIDEO_DEVICE},
    {"MOCKDEPTH_IMPL", Guids::MOCKDEPTH_IMPL, ImplType_DEPTH_NODE},
    {"GENERICAUDIO_IMPL", Guids::GENERICAUDIO_IMPL, ImplType_AUDIO_NODE},
    {"GENERICCOLOR_IMPL", Guids::GENERICCOLOR_IMPL, ImplType_COLOR_NODE},
    {"ZT311_IMPL", Guids::ZT311_IMPL, ImplType_DEPTH_NODE},
    {"ZT325_IMPL", Guids::ZT325_IMPL, ImplType_DEPTH_NODE},
    {"ZT325V2_IMPL", Guids::ZT325V2_IMPL, ImplType_DEPTH_NODE},
    {"ZT325V2COLOR_IMPL", Guids::ZT325V2COLOR_IMPL, ImplType_COLOR_NODE},
    {"UNSUPPORTED_IMPL", Guids::UNSUPPORTED_IMPL, ImplType_NONE},
    {"MOCKVIDEODEVICE_IMPL", Guids::MOCKVIDEODEVICE_IMPL, ImplType_VIDEO_DEVICE},
    {"MOCKAUDIODEVICE_IMPL", Guids::MOCKAUDIODEVICE_IMPL, ImplType_AUDIO_DEVICE},
    {"WMFAUDIO_IMPL", Guids::WMFAUDIO_IMPL, ImplType_AUDIO_DEVICE},
    {"V4L2VIDEO_IMPL", Guids::V4L2VIDEO_IMPL, ImplType_VIDEO_DEVICE},
    {"ALSAAUDIO_IMPL", Guids::ALSAAUDIO_IMPL, ImplType_AUDIO_DEVICE},
    {"DEFAULT_ENUMERATOR_IMPL", Guids::DEFAULT_ENUMERATOR_IMPL, ImplType_ENUMERATOR},
    {"MOCK_ENUMERATOR_IMPL", Guids::MOCK_ENUMERATOR_IMPL, ImplType_ENUMERATOR},
};

/// Every field in hexadecimal without leading zeros. The bytes are widened: as they are, they would print as
/// characters.
std::string fieldsToString(const GUID& guid) {
    Utils::Format text("{%{:x},%{:x},%{:x},{%{:x},%{:x},%{:x},%{:x},%{:x},%{:x},%{:x},%{:x}}}");
    text % guid.Data1 % guid.Data2 % guid.Data3;
    for (const unsigned byte : guid.Data4)
        text % byte;
    return text;
}

} // namespace

const WellKnownGuid* wellKnownGuids(std::size_t& count) noexcept {
    count = std::size(table);
    return table;
}

std::string GUID_toString(GUID guid) {
    for (const WellKnownGuid& entry : table) {
        if (guidEquals(entry.guid, guid))
            return entry.name;
    }
    return fieldsToString(guid);
}

} // namespace Zentara::Core
