#pragma once

#include <cstdint>

#include <zentara/core/plugin.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/version.h>

/// The five functions that every plug-in library exports, with C linkage and exactly these names.
///
///     GUID  getImplGUID();       its identity; one plug-in per GUID is registered
///     int32 getImplType();       its kind: an ImplType, one of 1 to 6, 8 and 9
///     void  getPluginVersion(int32* major, int32* minor, int32* patch);
///     void  getSDKVersion(int32* major, int32* minor, int32* patch, int32* build);
///     void* createInstance();    the factory
///
/// The scan calls the first four without making an object, and closes the library after that: they return
/// constants and touch nothing else. None of them may throw but the factory.
namespace Zentara::Core {
/// The types of the five.
using GetImplGUIDFunction = GUID (*)();
using GetImplTypeFunction = std::int32_t (*)();
using GetPluginVersionFunction = void (*)(std::int32_t*, std::int32_t*, std::int32_t*);
using GetSDKVersionFunction = void (*)(std::int32_t*, std::int32_t*, std::int32_t*, std::int32_t*);
using CreateInstanceFunction = void* (*)();

} // namespace Zentara::Core

/// Defines all five in one source of a plug-in, at namespace scope. The SDK version is that of the headers.
///
///     ZENTARA_DEFINE_PLUGIN(MyVideoDevice, MY_GUID, Zentara::Core::ImplType_VIDEO_DEVICE, 1, 0, 0)
///
/// \param className  derives from Zentara::Core::Plugin and has a constructor without arguments.
#define ZENTARA_DEFINE_PLUGIN(className, guid, implType, majorVersion, minorVersion, patchVersion)           \
    ZENTARA_PLUGIN_EXPORT GUID getImplGUID() { return guid; }                                                \
    ZENTARA_PLUGIN_EXPORT std::int32_t getImplType() { return implType; }                                    \
    ZENTARA_PLUGIN_EXPORT void getPluginVersion(std::int32_t* major_, std::int32_t* minor_,                  \
                                                std::int32_t* patch_) {                                      \
        *major_ = majorVersion;                                                                              \
        *minor_ = minorVersion;                                                                              \
        *patch_ = patchVersion;                                                                              \
    }                                                                                                        \
    ZENTARA_PLUGIN_EXPORT void getSDKVersion(std::int32_t* major_, std::int32_t* minor_,                     \
                                             std::int32_t* patch_, std::int32_t* build_) {                   \
        *major_ = ZENTARA_SDK_VERSION_MAJOR;                                                                 \
        *minor_ = ZENTARA_SDK_VERSION_MINOR;                                                                 \
        *patch_ = ZENTARA_SDK_VERSION_PATCH;                                                                 \
        *build_ = ZENTARA_SDK_VERSION_BUILD;                                                                 \
    }                                                                                                        \
    ZENTARA_PLUGIN_EXPORT void* createInstance() {                                                           \
        return static_cast<Zentara::Core::Plugin*>(new className());                                         \
    }
