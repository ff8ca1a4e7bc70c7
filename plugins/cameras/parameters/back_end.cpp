// The functions that the parameter interpreter looks up by name. Nothing is thrown through them.

#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include <zentara/core/impl_type.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/version.h>

#include "plugins/cameras/parameters/camera_parameters.h"
#include "plugins/cameras/plugin_guids.h"

using namespace Zentara;
using namespace Zentara::Cameras;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct Instance {
    std::optional<CameraParameters> camera; ///< nothing unless initialised
    std::string lastError;
};

/// Runs an operation on the instance. What it throws becomes a code and the last-error text.
template<typename Operation>
ErrorCode guard(void* handle, Operation operation) noexcept {
    auto& instance = *static_cast<Instance*>(handle);
    try {
        try {
            operation(instance);
            return ErrorCode_SUCCESS;
        } catch (const Failure& failure) {
            instance.lastError = failure.what();
            return failure.code;
        } catch (const Plugin::PluginException& failure) {
            instance.lastError = failure.message();
            return failure.type() == Plugin::PluginExceptionType_IO ? ErrorCode_IO : ErrorCode_NOT_SUPPORTED;
        } catch (const std::exception& failure) {
            instance.lastError = failure.what();
        }
    } catch (...) {
        // There is no memory for a text.
    }
    return ErrorCode_FAILED;
}

/// The same for what needs a camera.
template<typename Operation>
ErrorCode withCamera(void* handle, Operation operation) noexcept {
    return guard(handle, [&operation](Instance& instance) {
        if (!instance.camera)
            throw Failure(ErrorCode_INVALID_STATE, "the parameter back-end is not initialized");
        operation(*instance.camera);
    });
}

/// Copies bytes out, or tells how many they are: a caller asks with no buffer first, and comes again.
ErrorCode deliver(const void* bytes, std::size_t size, void* buffer, unsigned int* length) noexcept {
    const bool fits = buffer && *length >= size;
    *length = static_cast<unsigned int>(size);
    if (!fits)
        return ErrorCode_BUFFER_TOO_SMALL;
    if (size > 0)
        std::memcpy(buffer, bytes, size);
    return ErrorCode_SUCCESS;
}

double readNumber(CameraParameters& camera, ParameterType parameter, ParameterValueType type) {
    return camera.read(CameraParameters::parameter(parameter, type));
}

} // namespace

ZENTARA_PLUGIN_EXPORT GUID getImplGUID() { return parameterBackEndGuid; }

ZENTARA_PLUGIN_EXPORT std::int32_t getImplType() { return Core::ImplType_PARAMETER_INTERPRETER; }

ZENTARA_PLUGIN_EXPORT void getPluginVersion(std::int32_t* major, std::int32_t* minor, std::int32_t* patch) {
    *major = 1;
    *minor = 0;
    *patch = 0;
}

ZENTARA_PLUGIN_EXPORT void getSDKVersion(std::int32_t* major, std::int32_t* minor, std::int32_t* patch,
                                         std::int32_t* build) {
    *major = ZENTARA_SDK_VERSION_MAJOR;
    *minor = ZENTARA_SDK_VERSION_MINOR;
    *patch = ZENTARA_SDK_VERSION_PATCH;
    *build = ZENTARA_SDK_VERSION_BUILD;
}

ZENTARA_PLUGIN_EXPORT void* createInstance() { return new (std::nothrow) Instance; }

ZENTARA_PLUGIN_EXPORT void destroyInstance(void* instance) { delete static_cast<Instance*>(instance); }

ZENTARA_PLUGIN_EXPORT ErrorCode initialize(void* handle, void* context, IO::BackEnd::Transfer* set,
                                           IO::BackEnd::Transfer* get, const HardwareIDs*,
                                           const HardwareVersionInternal* version) {
    return guard(handle, [&](Instance& instance) {
        if (!set || !get || !version)
            throw Failure(ErrorCode_FAILED, "no way to the camera was given");
        instance.camera.emplace(IO::BackEndWay{context, set, get}, *version);
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode dispose(void* handle) {
    return guard(handle, [](Instance& instance) { instance.camera.reset(); });
}

ZENTARA_PLUGIN_EXPORT ErrorCode getUnitType(void* handle, ParameterType parameter, UnitType* unit) {
    return guard(handle, [&](Instance&) { *unit = CameraParameters::parameter(parameter).unit; });
}

ZENTARA_PLUGIN_EXPORT ErrorCode getAccessMode(void* handle, ParameterType parameter, AccessMode* mode) {
    return guard(handle, [&](Instance&) { *mode = CameraParameters::parameter(parameter).access; });
}

ZENTARA_PLUGIN_EXPORT ErrorCode readFloat(void* handle, ParameterType parameter, float* value) {
    return withCamera(handle, [&](CameraParameters& camera) {
        *value = static_cast<float>(readNumber(camera, parameter, ParameterValueType_FLOAT));
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode writeFloat(void* handle, ParameterType parameter, float value) {
    return withCamera(handle, [&](CameraParameters& camera) {
        camera.write(CameraParameters::parameter(parameter, ParameterValueType_FLOAT), value);
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode readInt(void* handle, ParameterType parameter, int* value) {
    return withCamera(handle, [&](CameraParameters& camera) {
        *value = static_cast<int>(readNumber(camera, parameter, ParameterValueType_INT));
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode writeInt(void* handle, ParameterType parameter, int value) {
    return withCamera(handle, [&](CameraParameters& camera) {
        camera.write(CameraParameters::parameter(parameter, ParameterValueType_INT), value);
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode readBool(void* handle, ParameterType parameter, bool* value) {
    return withCamera(handle, [&](CameraParameters& camera) {
        *value = readNumber(camera, parameter, ParameterValueType_BOOL) != 0;
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode writeBool(void* handle, ParameterType parameter, bool value) {
    return withCamera(handle, [&](CameraParameters& camera) {
        camera.write(CameraParameters::parameter(parameter, ParameterValueType_BOOL), value);
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode setRegionOfInterest(void* handle, const RegionOfInterestInternal* region) {
    return withCamera(handle, [&](CameraParameters& camera) { camera.writeRegion(*region); });
}

ZENTARA_PLUGIN_EXPORT ErrorCode getRegionOfInterest(void* handle, RegionOfInterestInternal* region) {
    return withCamera(handle, [&](CameraParameters& camera) { *region = camera.readRegion(); });
}

ZENTARA_PLUGIN_EXPORT ErrorCode getLastError(void* handle, char* buffer, unsigned int* length) {
    const std::string& text = static_cast<Instance*>(handle)->lastError;
    return deliver(text.c_str(), text.size() + 1, buffer, length);
}

ZENTARA_PLUGIN_EXPORT ErrorCode readSystemState(void* handle, unsigned char* buffer, unsigned int length) {
    return withCamera(handle, [&](CameraParameters& camera) {
        Bytes state(buffer, buffer + length); // a copy: what fails halfway leaves the caller's bytes alone
        camera.readState(state);
        std::copy(state.begin(), state.end(), buffer);
    });
}

ZENTARA_PLUGIN_EXPORT ErrorCode writeSystemState(void* handle, const unsigned char* buffer,
                                                 unsigned int length) {
    return withCamera(handle,
                      [&](CameraParameters& camera) { camera.writeState(Bytes(buffer, buffer + length)); });
}

ZENTARA_PLUGIN_EXPORT ErrorCode getParameterRange(void* handle, ParameterType parameter,
                                                  unsigned char* buffer, unsigned int* length) {
    Bytes range;
    const ErrorCode code = guard(
        handle, [&](Instance&) { range = CameraParameters::range(CameraParameters::parameter(parameter)); });
    return code == ErrorCode_SUCCESS ? deliver(range.data(), range.size(), buffer, length) : code;
}

ZENTARA_PLUGIN_EXPORT ErrorCode writeCalibration(void* handle, const unsigned char* buffer,
                                                 unsigned int length) {
    return withCamera(
        handle, [&](CameraParameters& camera) { camera.writeCalibration(Bytes(buffer, buffer + length)); });
}

ZENTARA_PLUGIN_EXPORT ErrorCode readCalibration(void* handle, unsigned char* buffer, unsigned int* length) {
    const Bytes* calibration = nullptr;
    const ErrorCode code =
        withCamera(handle, [&](CameraParameters& camera) { calibration = &camera.readCalibration(); });
    return calibration ? deliver(calibration->data(), calibration->size(), buffer, length) : code;
}

ZENTARA_PLUGIN_EXPORT ErrorCode getPhaseScaling(void* handle, float* scaling) {
    return withCamera(
        handle, [&](CameraParameters& camera) { *scaling = static_cast<float>(camera.phaseScaling()); });
}
