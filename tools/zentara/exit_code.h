#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <zentara/plugin/plugin_exceptions.h>

#include "tools/zentara/supervisor.h"

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
    /// \param whatToDo a line of its own; empty for what is usual with that exit code \param reasons a line each
    /// A text that tells, in the system's words, a lack of permission makes a plain failure one of permission.
    ToolFailure(ExitCode exitCode, const std::string& what, const std::string& whatCameBack = {},
                const std::string& whatToDo = {}, std::vector<std::string> reasons = {});

    const ExitCode code;
    const std::string message;
    const std::string cause;                ///< may be empty
    const std::string remedy;               ///< may be empty
    const std::vector<std::string> details; ///< stand below the message; mostly none
};

/// The exit code that a plug-in exception ends the process with.
[[nodiscard]] ExitCode exitCodeOf(Plugin::PluginExceptionType type) noexcept;

/// The kind of a plug-in exception, for people: "I/O failure".
[[nodiscard]] const char* failureText(Plugin::PluginExceptionType type) noexcept;

namespace Detail {
/// Where the log stands; 0 without one.
[[nodiscard]] std::size_t placeInLog();

/// Turns the exception that is being handled into a ToolFailure.
/// \param logged where the log stood when the step began
[[noreturn]] void rethrow(const std::string& what, std::size_t logged);
} // namespace Detail

/// Does one step, under the eyes of the supervisor. Whatever it throws leaves as a ToolFailure "cannot WHAT", its cause
/// "KIND: MESSAGE". A failure that came of a time-out which only the log tells has that in its cause, and its exit code.
template<typename Step>
void attempt(const std::string& what, Step step) {
    const WatchedStep watched(what);
    const std::size_t logged = Detail::placeInLog();
    try {
        step();
    } catch (...) {
        Detail::rethrow(what, logged);
    }
}

} // namespace Zentara::Tool
