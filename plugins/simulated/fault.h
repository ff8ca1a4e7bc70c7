#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Simulated {

/// Where a simulated device can be made to fail: its operations, under the names that the settings use for them.
enum class Operation : std::uint8_t {
    Create, // the factory itself
    Initialize,
    Dispose,
    ThreadInitialize,
    ThreadUninitialize,
    ReadBuffer,
    Open,
    Close,
    Disable,
    GetControlRanges,
    GetConfigurations,
    EnableColor,
    EnableDepth,
    SetControl,
    Send,
    Recv,
    Len,
    Setup,
    ControlRead,
    ControlWrite,
    BulkWrite,
    Pause,
    Resume,
    SetRegion,
    SetOutputFormat,
    GetDefault,
    EnableAudio,
    SetLevel,
    SetMute,
    Transfer, // a SET or GET on the extension unit, below the operations that ask for it
};

inline constexpr std::size_t operationCount = static_cast<std::size_t>(Operation::Transfer) + 1;

/// The word that stands for an operation in the settings, for example "readBuffer".
[[nodiscard]] const char* operationName(Operation operation) noexcept;

enum class Device : std::uint8_t { Any, Video, Audio };

/// One thing that goes wrong.
struct Fault {
    enum class Kind : std::uint8_t {
        Throw,   ///< a plug-in exception
        Foreign, ///< an exception that is none of the plug-in exceptions
        Hang,    ///< nothing happens for so long; a transfer then ends as one that was never answered
        // Of a transfer only:
        Fail,    ///< it never reaches the controller; `IOPluginException`
        Late,    ///< the controller has acted, but its answer comes too late; `TimeoutPluginException`
        Short,   ///< fewer bytes come back, or are taken, than were asked
        Long,    ///< more bytes come back than were asked
        Corrupt, ///< every byte but the first has its bits turned over
    };

    Kind kind = Kind::Throw;
    Device device = Device::Any;
    Operation at = Operation::Create;
    Plugin::PluginExceptionType exception = Plugin::PluginExceptionType_IO;
    std::uint32_t milliseconds = 0;    ///< how long it hangs
    std::uint32_t after = 0;           ///< calls that go well first
    std::uint32_t times = 0xFFFFFFFFU; ///< calls that go wrong then
    std::string message;               ///< of the exception; empty for one that names the operation
};

} // namespace Zentara::Simulated
