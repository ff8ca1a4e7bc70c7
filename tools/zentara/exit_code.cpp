#include "tools/zentara/exit_code.h"

#include <exception>

#include <zentara/utils/format.h>

namespace Zentara::Tool {

using Zentara::Plugin::PluginException;

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
        throw ToolFailure(exitCodeOf(failure.type()), Utils::Format("cannot %: %: %") % what %
                                                          failureText(failure.type()) % failure.message());
    } catch (const std::exception& failure) {
        throw ToolFailure(ExitCode_FAILED, Utils::Format("cannot %: %") % what % failure.what());
    }
}

} // namespace Zentara::Tool
