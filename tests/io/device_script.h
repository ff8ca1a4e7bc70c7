#pragma once

#include <cstdlib>

#include <zentara/guid.h>
#include <zentara/io/device_request.h>
#include <zentara/utils/environment_variable.h>

namespace Testing {

/// What the fixture plug-ins report to, and what decides how they behave. The test that runs in the same process
/// says through an environment variable where it is.
class DeviceScript {
public:
    virtual void created() = 0;
    virtual void destroyed() = 0;

    /// A library of a broken device entered the process (1) or left it (-1).
    virtual void loaded(int change) = 0;

    /// An operation of the device was called. May throw and block: the operation does nothing else.
    /// \param slot the operation's number in the table of device operations, the destructor counted once
    /// \param request null for operations without one
    virtual void called(int slot, Zentara::IO::deviceRequest* request) = 0;
    virtual bool cancel() = 0;

    /// In which operation the device throws, and which of the exceptions that it makes itself; none at first.
    int throwingSlot = 0;
    int ownException = 0;

    static constexpr const char* variable = "ZENTARA_TEST_DEVICE_SCRIPT";

    /// Null while there is no test.
    static DeviceScript* find() {
        Zentara::Utils::EnvironmentVariable address(variable);
        const char* const text = address.getValue();
        return text ? reinterpret_cast<DeviceScript*>(std::strtoull(text, nullptr, 16)) : nullptr;
    }
    static DeviceScript& current() { return *find(); }

protected:
    ~DeviceScript() = default;
};

constexpr GUID VIDEO_DEVICE = {0x10000001, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID AUDIO_DEVICE = {0x10000002, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
/// Factories that make no device: null, another object, and one that goes by another's name.
constexpr GUID NULL_DEVICE = {0x10000003, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID OTHER_DEVICE = {0x10000005, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID MISNAMED_DEVICE = {0x10000008, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
/// A video device of which no other test leaves a failed request behind.
constexpr GUID LEAVING_DEVICE = {0x10000009, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
/// Overrides only what it must.
constexpr GUID BARE_DEVICE = {0x10000006, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};

} // namespace Testing
