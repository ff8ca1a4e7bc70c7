#include "host/attempt.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string_view>
#include <system_error>
#include <vector>

#include <zentara/host/step_watcher.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "host/user_log.h"
#include "utils/platform/program.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

using Zentara::Plugin::PluginException;

namespace {

thread_local StepWatcher* watching = nullptr;

/// The system's words for a failure that has a code of its own. The library's failures carry no number, only the text.
struct SystemWords {
    Failure::Code code;
    std::vector<std::string> texts;
};

SystemWords wordsFor(Failure::Code code, std::errc usual, const std::vector<long>& numbers) {
    SystemWords words{code, {std::make_error_code(usual).message()}};
    for (const long number : numbers) {
        const std::string text = Utils::formatError(number, ""); // " (error 0xNUMBER: TEXT)"
        const std::size_t colon = text.find(": ");
        if (colon != std::string::npos)
            words.texts.push_back(text.substr(colon + 2, text.rfind(')') - colon - 2));
    }
    return words;
}

/// Whether the text ends in these words of the system: "WHAT: WORDS", "WHAT (WORDS)" or "WHAT (error 0xNUMBER: WORDS)".
/// What stands before them may hold anything, such as a file that is called so.
bool endsIn(std::string_view text, std::string_view words) {
    if (text.ends_with(')') && !words.ends_with(')'))
        text.remove_suffix(1);
    if (!text.ends_with(words))
        return false;
    text.remove_suffix(words.size());
    return text.ends_with(": ") || text.ends_with(" (");
}

Failure::Code refined(Failure::Code code, const std::string& cause) {
    namespace Platform = Utils::Platform;
    static const auto& known = *new std::vector<SystemWords>{
        wordsFor(Failure::Permission, std::errc::permission_denied, Platform::permissionErrors()),
        wordsFor(Failure::NoDevice, std::errc::no_such_device, Platform::absenceErrors()),
        wordsFor(Failure::TimedOut, std::errc::timed_out, Platform::timeoutErrors()),
    };
    if (code != Failure::Failed)
        return code;
    for (const SystemWords& words : known) {
        if (std::any_of(words.texts.begin(), words.texts.end(),
                        [&cause](const std::string& text) { return endsIn(cause, text); }))
            return words.code;
    }
    return code;
}

/// A plug-in that could not be initialised tells no reason; a time-out that was logged meanwhile is one.
std::string hiddenTimeout(Plugin::PluginExceptionType type) {
    return watching == nullptr || type != Plugin::PluginExceptionType_INITIALIZATION ? std::string()
                                                                                     : watching->timeout();
}

} // namespace

StepWatcher::~StepWatcher() = default;

void watchSteps(StepWatcher* watcher) noexcept { watching = watcher; }

StepWatcher* stepWatcher() noexcept { return watching; }

Step::Step(const std::string& what) {
    logInfo(what); // before it: the last line tells what hangs, or has crashed
    if (watching != nullptr)
        watching->begins(what);
}

Step::~Step() {
    if (watching != nullptr)
        watching->ends();
}

Failure::Code codeOf(Plugin::PluginExceptionType type) noexcept {
    switch (type) {
    case Plugin::PluginExceptionType_TIMEOUT:
        return Failure::TimedOut;
    case Plugin::PluginExceptionType_UNAUTHORIZED_ACCESS:
        return Failure::Permission;
    case Plugin::PluginExceptionType_INVALID_OPERATION:
        return Failure::Busy; // it would be possible in another state
    default:
        return Failure::Failed;
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

void rethrowAsFailure(const std::string& what) {
    const std::string message = "cannot " + what;
    try {
        throw;
    } catch (const Failure&) {
        throw;
    } catch (const Plugin::NotSupportedPluginException& lack) {
        throw Unsupported(message, failureText(lack.type()) + (": " + Utils::visibleText(lack.message())));
    } catch (const PluginException& failure) {
        const std::string timeout = hiddenTimeout(failure.type());
        const std::string cause =
            Utils::Format("%: %") % failureText(failure.type()) % Utils::visibleText(failure.message());
        if (!timeout.empty())
            throw Failure(Failure::TimedOut, message, cause + "; timed out: " + Utils::visibleText(timeout));
        throw Failure(refined(codeOf(failure.type()), cause), message, cause);
    } catch (const std::bad_alloc&) {
        throw LackOfMemory(message);
    } catch (const std::exception& failure) {
        const std::string cause = Utils::visibleText(failure.what());
        throw Failure(refined(Failure::Failed, cause), message, cause);
    } catch (...) {
        throw Failure(Failure::Failed, message, "unknown exception");
    }
}

} // namespace Zentara::Host
