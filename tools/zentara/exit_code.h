#pragma once

#include <stdexcept>
#include <string>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Tool {

/// What the process ends with.
enum ExitCode : int {
    ExitCode_DONE = 0,
    ExitCode_FAILED = 1,
    ExitCode_USAGE = 2,
    ExitCode_NO_DEVICE = 3,
    ExitCode_NO_PLUGIN = 4,
    ExitCode_PERMISSION = 5,
    ExitCode_BUSY = 6,
    ExitCode_TIMEOUT = 7,
    ExitCode_VERIFICATION = 8,
    ExitCode_INTERRUPTED = 130,
};

/// Ends a verb. what() says what was attempted, on what, and what came back.
class ToolFailure : public std::runtime_error {
public:
    /// \param what was attempted, on what \param whatCameBack empty where the first says it
    /// \param whatToDo a line of its own; empty for what is usual with that exit code
    ToolFailure(ExitCode exitCode, const std::string& what, const std::string& whatCameBack = {},
                const std::string& whatToDo = {});

    const ExitCode code;
    const std::string message;
    const std::string cause;  ///< may be empty
    const std::string remedy; ///< may be empty
};

/// The exit code that a plug-in exception ends the process with.
[[nodiscard]] ExitCode exitCodeOf(Plugin::PluginExceptionType type) noexcept;

/// The kind of a plug-in exception, for people: "I/O failure".
[[nodiscard]] const char* failureText(Plugin::PluginExceptionType type) noexcept;

namespace Detail {
/// Turns the exception that is being handled into a ToolFailure.
[[noreturn]] void rethrow(const std::string& what);
} // namespace Detail

/// Does one step. Whatever it throws leaves as a ToolFailure "cannot WHAT", its cause "KIND: MESSAGE".
template<typename Step>
void attempt(const std::string& what, Step step) {
    try {
        step();
    } catch (...) {
        Detail::rethrow(what);
    }
}

} // namespace Zentara::Tool
