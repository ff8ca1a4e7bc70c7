#include "tools/zentara/exit_code.h"

#include <algorithm>
#include <exception>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "tools/zentara/tool_log.h"
#include "utils/platform/program.h"
#include "utils/visible_text.h"

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

/// What the system says when something is not permitted. The library's failures carry no number, only the text.
std::vector<std::string> permissionTexts() {
    std::vector<std::string> texts{std::make_error_code(std::errc::permission_denied).message()};
    for (const long number : Utils::Platform::permissionErrors()) {
        const std::string text = Utils::formatError(number, ""); // " (error 0xNUMBER: TEXT)"
        const std::size_t colon = text.find(": ");
        if (colon != std::string::npos)
            texts.push_back(text.substr(colon + 2, text.rfind(')') - colon - 2));
    }
    return texts;
}

ExitCode refined(ExitCode code, const std::string& message) {
    static const std::vector<std::string>& texts = *new std::vector<std::string>(permissionTexts());
    const bool isDenied = std::any_of(texts.begin(), texts.end(), [&message](const std::string& text) {
        return message.find(text) != std::string::npos;
    });
    return code == ExitCode_FAILED && isDenied ? ExitCode_PERMISSION : code;
}

} // namespace

ToolFailure::ToolFailure(ExitCode exitCode, const std::string& what, const std::string& whatCameBack,
                         const std::string& whatToDo, std::vector<std::string> reasons)
    : std::runtime_error(what + (whatCameBack.empty() ? "" : ": " + whatCameBack)),
      code(refined(exitCode, what + whatCameBack)), message(what), cause(whatCameBack),
      remedy(whatToDo.empty() ? remedyFor(code) : whatToDo), details(std::move(reasons)) {}

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

std::size_t Detail::placeInLog() {
    ToolLog* log = ToolLog::current();
    return log == nullptr ? 0 : log->end();
}

namespace {

/// A plug-in that could not be initialised tells no reason; a time-out that was logged meanwhile is one.
std::string hiddenTimeout(Plugin::PluginExceptionType type, std::size_t logged) {
    ToolLog* log = ToolLog::current();
    return log == nullptr || type != Plugin::PluginExceptionType_INITIALIZATION ? std::string()
                                                                                : log->timeoutSince(logged);
}

} // namespace

void Detail::rethrow(const std::string& what, std::size_t logged) {
    try {
        throw;
    } catch (const ToolFailure&) {
        throw;
    } catch (const PluginException& failure) {
        const std::string timeout = hiddenTimeout(failure.type(), logged);
        const std::string cause =
            Utils::Format("%: %") % failureText(failure.type()) % Utils::visibleText(failure.message());
        if (!timeout.empty())
            throw ToolFailure(ExitCode_TIMEOUT, "cannot " + what,
                              cause + "; timed out: " + Utils::visibleText(timeout));
        throw ToolFailure(exitCodeOf(failure.type()), "cannot " + what, cause);
    } catch (const std::bad_alloc&) {
        throw ToolFailure(ExitCode_FAILED, "cannot " + what, "there is not enough memory");
    } catch (const std::exception& failure) {
        throw ToolFailure(ExitCode_FAILED, "cannot " + what, Utils::visibleText(failure.what()));
    }
}

} // namespace Zentara::Tool
