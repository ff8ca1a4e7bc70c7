// Defines two exports of a plug-in that lists its own: its version, which is 0, and that of the SDK it was built with.
#pragma once

#include <zentara/export.h>
#include <zentara/version.h>

ZENTARA_PLUGIN_EXPORT void getPluginVersion(std::int32_t* major, std::int32_t* minor, std::int32_t* patch) {
    *major = *minor = *patch = 0;
}
ZENTARA_PLUGIN_EXPORT void getSDKVersion(std::int32_t* major, std::int32_t* minor, std::int32_t* patch,
                                         std::int32_t* build) {
    *major = ZENTARA_SDK_VERSION_MAJOR;
    *minor = ZENTARA_SDK_VERSION_MINOR;
    *patch = ZENTARA_SDK_VERSION_PATCH;
    *build = ZENTARA_SDK_VERSION_BUILD;
}
