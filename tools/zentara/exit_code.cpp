#include "tools/zentara/exit_code.h"

#include <exception>

#include <zentara/utils/format.h>

namespace Zentara::Tool {

using Zentara::Plugin::PluginException;

namespace {

/// What usually helps; a failure that knows more says it itself.
const char* remedyFor(ExitCode code) noexcept {
    switch (code) {
    case ExitCode_NO_DEVICE:
        return "'zentara devices' lists the cameras that are plugged in";
    case ExitCode_NO_PLUGIN:
        return "'zentara plugins --all' tells what each file of the plug-in directory is refused for";
    case ExitCode_BUSY:
        return "try again when the program that uses it has ended";
    case ExitCode_TIMEOUT:
        return "try again; if it stays so, unplug the camera and plug it in";
    default:
        return "";
    }
}

} // namespace

ToolFailure::ToolFailure(ExitCode exitCode, const std::string& what, const std::string& whatCameBack,
                         const std::string& whatToDo)
    : std::runtime_error(what + (whatCameBack.empty() ? "" : ": " + whatCameBack)), code(exitCode),
      message(what), cause(whatCameBack), remedy(whatToDo.empty() ? remedyFor(exitCode) : whatToDo) {}

ExitCode exitCodeOf(Plugin::PluginExceptionType type) noexcept {
    switch (type) {
    case Plugin::PluginExceptionType_TIMEOUT:
        return ExitCode_TIMEOUT;
    case Plugin::PluginExceptionType_UNAUTHORIZED_ACCESS:
        return ExitCode_PERMISSION;
    case Plugin::PluginExceptionType_INVALID_OPERATION:
        return ExitCode_BUSY; // it would be possible in another state
    default:
        return ExitCode_FAILED;
    }
}

const char* failureText(Plugin::PluginExceptionType type) noexcept {
    switch (type) {
    case Plugin::PluginExceptionType_STREAMING:
        return "streaming failure";
    case Plugin::PluginExceptionType_CONFIGURATION:
        return "wrong configuration";
    case Plugin::PluginExceptionType_TIMEOUT:
        return "timed out";
    case Plugin::PluginExceptionType_ARGUMENT:
        return "wrong argument";
    case Plugin::PluginExceptionType_IO:
        return "I/O failure";
    case Plugin::PluginExceptionType_NOT_SUPPORTED:
        return "not supported";
    case Plugin::PluginExceptionType_INITIALIZATION:
        return "initialization failure";
    case Plugin::PluginExceptionType_INVALID_OPERATION:
        return "not possible now";
    case Plugin::PluginExceptionType_UNAUTHORIZED_ACCESS:
        return "not permitted";
    }
    return "failure of unknown kind";
}

void Detail::rethrow(const std::string& what) {
    try {
        throw;
    } catch (const ToolFailure&) {
        throw;
    } catch (const PluginException& failure) {
        throw ToolFailure(exitCodeOf(failure.type()), "cannot " + what,
                          Utils::Format("%: %") % failureText(failure.type()) % failure.message());
    } catch (const std::exception& failure) {
        throw ToolFailure(ExitCode_FAILED, "cannot " + what, failure.what());
    }
}

} // namespace Zentara::Tool
