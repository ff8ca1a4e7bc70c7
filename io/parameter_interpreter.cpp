#include <zentara/io/parameter_interpreter.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zentara/calibration_internal.h>

#include "core/interface_version.h"
#include "io/back_end_functions.h"
#include "io/system_state.h"
#include "utils/log_warning.h"
#include "utils/visible_text.h"

namespace Zentara::IO {

using Plugin::ArgumentPluginException;
using Plugin::InitializationPluginException;
using Plugin::InvalidOperationPluginException;
using Plugin::IOPluginException;
using Plugin::NotSupportedPluginException;
using Utils::Format;

namespace {

/// More than any range, calibration or text has; a back-end that announces more lies.
constexpr unsigned int maximumAnswer = 1U << 20;

void checkWritten(ErrorCode code, const char* failure) {
    if (code == ErrorCode_OUT_OF_RANGE)
        throw ArgumentPluginException("value out of range");
    if (code != ErrorCode_SUCCESS)
        throw IOPluginException(failure);
}

void checkRead(ErrorCode code, const char* failure) {
    if (code != ErrorCode_SUCCESS)
        throw IOPluginException(failure);
}

void checkPointer(const void* pointer, const char* what) {
    if (!pointer)
        throw ArgumentPluginException(Format("% is null") % what);
}

} // namespace

struct ParameterInterpreter::Impl {
    BackEndFunctions functions;                 ///< looked up anew with each initialize
    void* library = nullptr;                    ///< not owned
    void* instance = nullptr;                   ///< null unless initialised
    mutable std::exception_ptr transferFailure; ///< of the last transfer of the function that runs

    /// Calls a function with the instance and these arguments.
    template<typename... Parameters, typename... Arguments>
    ErrorCode ask(const BackEndFunction<ErrorCode(void*, Parameters...)>& function,
                  Arguments... arguments) const {
        if (!instance)
            throw InvalidOperationPluginException(
                Format("cannot call %: the parameter interpreter is not initialized") % function.getName());
        return function(instance, arguments...);
    }

    /// The same. Where the camera is the reason that it fails, what the transfer threw is thrown on.
    template<typename Function, typename... Arguments>
    ErrorCode call(const Function& function, Arguments... arguments) const {
        transferFailure = nullptr;
        const ErrorCode code = ask(function, arguments...);
        const std::exception_ptr failure = std::exchange(transferFailure, nullptr);
        const bool isAnswer =
            code == ErrorCode_SUCCESS || code == ErrorCode_OUT_OF_RANGE || code == ErrorCode_BUFFER_TOO_SMALL;
        if (failure && !isAnswer)
            std::rethrow_exception(failure);
        return code;
    }

    /// One value that a function returns.
    template<typename T, typename Function, typename... Arguments>
    T read(const char* failure, const Function& function, Arguments... arguments) const {
        T value{};
        checkRead(call(function, arguments..., &value), failure);
        return value;
    }

    /// What a function returns that is asked for the length first, which has been done. One byte more is kept, a
    /// zero, so that the bytes have an address also when there are none. Nothing: the reason is in `reason`.
    template<typename Function, typename... Arguments>
    std::optional<std::vector<unsigned char>> fetch(std::string& reason, unsigned int length,
                                                    const Function& function, Arguments... arguments) const {
        if (length > maximumAnswer) {
            reason = Format("the back-end announces % bytes") % length;
            return std::nullopt;
        }
        std::vector<unsigned char> bytes(std::size_t{length} + 1);
        unsigned int filled = length;
        if (call(function, arguments..., bytes.data(), &filled) != ErrorCode_SUCCESS) {
            reason = lastError();
            return std::nullopt;
        }
        bytes.resize(std::size_t{std::min(filled, length)} + 1);
        bytes.back() = 0;
        return bytes;
    }

    /// The back-end's text about its last failure.
    std::string lastError() const;
    void destroyQuietly() noexcept;
};

std::string ParameterInterpreter::Impl::lastError() const {
    constexpr const char* unknown = "couldn't retrieve last error";
    unsigned int length = 0;
    // Where the function is missing, the failure that is being reported matters more.
    if (!functions.getLastError.exists() ||
        ask(functions.getLastError, nullptr, &length) != ErrorCode_BUFFER_TOO_SMALL || length == 0 ||
        length > maximumAnswer)
        return unknown;
    std::vector<char> text(std::size_t{length} + 1);
    if (ask(functions.getLastError, text.data(), &length) != ErrorCode_SUCCESS)
        return unknown;
    text.back() = '\0';
    return text.data();
}

void ParameterInterpreter::Impl::destroyQuietly() noexcept {
    void* const ended = std::exchange(instance, nullptr);
    try {
        functions.destroyInstance(ended);
    } catch (...) {
        // The failure that led here is reported.
    }
}

ParameterInterpreter::ParameterInterpreter(GUID backEnd, void* library)
    : Plugin(getImplType(), backEnd), impl(std::make_unique<Impl>()) {
    impl->library = library;
}

ParameterInterpreter::~ParameterInterpreter() = default;

void ParameterInterpreter::setLibrary(void* library) { impl->library = library; }

void ParameterInterpreter::noteTransfer(std::exception_ptr failure) noexcept {
    impl->transferFailure = std::move(failure);
}

Core::ImplType ParameterInterpreter::getImplType() { return Core::ImplType_PARAMETER_INTERPRETER; }

void ParameterInterpreter::getPluginVersion(int* major, int* minor, int* patch) {
    Core::reportInterfaceVersion(major, minor, patch);
}

ParameterValueType ParameterInterpreter::getParameterValueType(ParameterType parameter) {
    switch (parameter) {
    case ParameterType_FLOAT_0:
    case ParameterType_FLOAT_1:
    case ParameterType_FLOAT_2:
    case ParameterType_FLOAT_3:
    case ParameterType_FLOAT_5:
    case ParameterType_FLOAT_6:
    case ParameterType_FLOAT_8:
    case ParameterType_RANGE:
        return ParameterValueType_FLOAT;
    case ParameterType_INT_4:
    case ParameterType_INT_9:
    case ParameterType_INT_10:
    case ParameterType_RAW_OUTPUT_MODE:
    case ParameterType_INT_15:
        return ParameterValueType_INT;
    case ParameterType_BOOL_7:
    case ParameterType_BOOL_14:
        return ParameterValueType_BOOL;
    case ParameterType_REGION_OF_INTEREST:
        return ParameterValueType_REGION_OF_INTEREST;
    default:
        return ParameterValueType_NONE;
    }
}

void ParameterInterpreter::initialize(void* context, BackEnd::Transfer* set, BackEnd::Transfer* get,
                                      HardwareIDs ids, HardwareVersionInternal version) {
    constexpr const char* failure = "Failed to initialize plugin";
    if (!impl->library)
        throw InitializationPluginException("Invalid shared library handle");
    // Not virtual: an override of dispose takes down more than the instance.
    ParameterInterpreter::dispose();
    impl->functions.lookUp(impl->library);
    impl->instance = impl->functions.createInstance();
    if (!impl->instance)
        throw InitializationPluginException(failure);
    // One that refuses was never initialised, so it is destroyed and not disposed.
    try {
        if (impl->call(impl->functions.initialize, context, set, get, &ids, &version) != ErrorCode_SUCCESS)
            throw InitializationPluginException(failure);
    } catch (...) {
        impl->destroyQuietly();
        throw;
    }
}

void ParameterInterpreter::dispose() {
    if (!impl->instance)
        return;
    try {
        if (impl->ask(impl->functions.dispose) != ErrorCode_SUCCESS)
            Utils::logWarning("Failed to dispose the parameter back-end: " +
                              Utils::visibleText(impl->lastError()));
    } catch (...) {
        impl->destroyQuietly();
        throw;
    }
    impl->functions.destroyInstance(std::exchange(impl->instance, nullptr));
}

UnitType ParameterInterpreter::getUnitType(ParameterType parameter) {
    UnitType unit{};
    if (impl->call(impl->functions.getUnitType, parameter, &unit) != ErrorCode_SUCCESS)
        throw NotSupportedPluginException(Format("Failed to get unit type from plugin for %") % parameter);
    return unit;
}

AccessMode ParameterInterpreter::getAccessMode(ParameterType parameter) {
    AccessMode mode{};
    if (impl->call(impl->functions.getAccessMode, parameter, &mode) != ErrorCode_SUCCESS)
        throw NotSupportedPluginException(Format("Parameter % is not supported") % parameter);
    return mode;
}

void ParameterInterpreter::write(ParameterType parameter, bool value) {
    checkWritten(impl->call(impl->functions.writeBool, parameter, value), "Failed to write parameter");
}

void ParameterInterpreter::write(ParameterType parameter, int value) {
    checkWritten(impl->call(impl->functions.writeInt, parameter, value), "Failed to write parameter");
}

void ParameterInterpreter::write(ParameterType parameter, float value) {
    checkWritten(impl->call(impl->functions.writeFloat, parameter, value), "Failed to write parameter");
}

void ParameterInterpreter::write(const ParameterRequestMap& state) {
    constexpr const char* failure = "Failed to set system state: %";
    std::vector<unsigned char> bytes;
    const std::string reason = marshalSystemState(state, bytes);
    if (!reason.empty())
        throw ArgumentPluginException(Format(failure) % reason);
    const auto length = static_cast<unsigned int>(bytes.size());
    if (impl->call(impl->functions.writeSystemState, bytes.data(), length) != ErrorCode_SUCCESS)
        throw IOPluginException(Format(failure) % impl->lastError());
}

void ParameterInterpreter::read(ParameterType parameter, bool* value) {
    checkPointer(value, "the boolean to read into");
    // A C back-end may store any byte, of which a bool holds only two.
    unsigned char byte = 0;
    bool stored = false;
    checkRead(impl->call(impl->functions.readBool, parameter, &stored), "Failed to read parameter");
    std::memcpy(&byte, &stored, sizeof byte);
    *value = byte != 0;
}

void ParameterInterpreter::read(ParameterType parameter, int* value) {
    checkPointer(value, "the integer to read into");
    *value = impl->read<int>("Failed to read parameter", impl->functions.readInt, parameter);
}

void ParameterInterpreter::read(ParameterType parameter, float* value) {
    checkPointer(value, "the float to read into");
    *value = impl->read<float>("Failed to read parameter", impl->functions.readFloat, parameter);
}

void ParameterInterpreter::read(ParameterRequestMap& state) {
    constexpr const char* failure = "Failed to get system state: %";
    std::vector<unsigned char> bytes;
    std::string reason = marshalSystemState(state, bytes);
    if (!reason.empty())
        throw IOPluginException(Format(failure) % reason);
    const auto length = static_cast<unsigned int>(bytes.size());
    if (impl->call(impl->functions.readSystemState, bytes.data(), length) != ErrorCode_SUCCESS)
        throw IOPluginException(Format(failure) % impl->lastError());
    // The bytes went out with the present values as a question, and came back with the camera's.
    reason = unmarshalSystemState(bytes, state);
    if (!reason.empty())
        throw IOPluginException(Format(failure) % reason);
}

void ParameterInterpreter::setRegionOfInterest(RegionOfInterestInternal region) {
    checkWritten(impl->call(impl->functions.setRegionOfInterest, &region),
                 "Failed to set region of interest");
}

RegionOfInterestInternal ParameterInterpreter::getRegionOfInterest() {
    return impl->read<RegionOfInterestInternal>("Failed to get region of interest",
                                                impl->functions.getRegionOfInterest);
}

float ParameterInterpreter::getRange() {
    return impl->read<float>("Failed to get range", impl->functions.readFloat, ParameterType_RANGE);
}

Utils::SmartPtr<ParameterRangeBaseInternal> ParameterInterpreter::getParameterRange(ParameterType parameter) {
    const AccessMode mode = getAccessMode(parameter);
    const ParameterValueType type = getParameterValueType(parameter);
    if ((mode != AccessMode_WRITE && mode != AccessMode_READ_WRITE) || type == ParameterValueType_BOOL)
        return nullptr;
    const auto& function = impl->functions.getParameterRange;
    unsigned int length = 0;
    if (impl->call(function, parameter, nullptr, &length) != ErrorCode_BUFFER_TOO_SMALL)
        throw NotSupportedPluginException(Format("failed to get parameter range: %") % impl->lastError());
    std::string reason = "the back-end returned no valid range";
    if (const auto bytes = impl->fetch(reason, length, function, parameter)) {
        const auto size = static_cast<unsigned int>(bytes->size() - 1);
        if (auto range = ParameterRangeBaseInternal::unmarshal(type, bytes->data(), size))
            return range;
    }
    throw NotSupportedPluginException(Format("failed to get parameter range for %: %") % parameter % reason);
}

RawOutputMode ParameterInterpreter::getRawOutputMode() {
    return static_cast<RawOutputMode>(impl->read<int>(
        "Failed to get raw output mode", impl->functions.readInt, ParameterType_RAW_OUTPUT_MODE));
}

void ParameterInterpreter::writeCalibration(CalibrationInternal* calibration) {
    constexpr const char* failure = "failed to write calibration: %";
    checkPointer(calibration, "the calibration to write");
    unsigned int length = 0;
    // Encoded twice: the first time into nothing, which tells the length by failing; a calibration that has nothing to
    // say has length 0. One byte more, so that the bytes have an address then as well.
    calibration->marshal(nullptr, &length);
    std::vector<unsigned char> bytes(std::size_t{length} + 1);
    if (calibration->marshal(bytes.data(), &length) != 0)
        throw NotSupportedPluginException(Format(failure) % "it cannot be marshalled");
    if (impl->call(impl->functions.writeCalibration, bytes.data(), length) != ErrorCode_SUCCESS)
        throw NotSupportedPluginException(Format(failure) % impl->lastError());
}

void ParameterInterpreter::readCalibration(CalibrationInternal* calibration) {
    constexpr const char* failure = "failed to read calibration: %";
    checkPointer(calibration, "the calibration to read into");
    const auto& function = impl->functions.readCalibration;
    unsigned int length = 0;
    // A back-end says no length with success: it is asked for by a buffer that cannot suffice.
    if (impl->call(function, nullptr, &length) != ErrorCode_BUFFER_TOO_SMALL)
        throw NotSupportedPluginException(Format(failure) % impl->lastError());
    std::string reason;
    const auto bytes = impl->fetch(reason, length, function);
    if (!bytes)
        throw NotSupportedPluginException(Format(failure) % reason);
    if (calibration->unmarshal(bytes->data(), static_cast<unsigned int>(bytes->size() - 1)) != 0)
        throw NotSupportedPluginException("failed to unmarshal calibration");
}

float ParameterInterpreter::getPhaseScaling() {
    return impl->read<float>("Failed to get phase scaling", impl->functions.getPhaseScaling);
}

} // namespace Zentara::IO
