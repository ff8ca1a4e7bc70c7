#include "host/plugins/check/check_run.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <typeindex>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "host/json.h"
#include "utils/platform/program.h"
#include "utils/visible_text.h"

namespace Zentara::Host::Check {
namespace {

using namespace Zentara::Plugin;
using Utils::Format;

constexpr std::size_t longestText = 400; ///< of what came back; the report has room for all steps then

/// What a call came to.
struct CallResult {
    enum class Kind { Returned, Refused, Derived, Foreign, Found };
    Kind kind = Kind::Returned;
    PluginExceptionType type = PluginExceptionType_IO;
    std::string text;
    Finding finding;
};

struct KnownException {
    std::type_index type;
    const char* name;
};

const char* nameOf(const PluginException& thrown) {
    static const KnownException known[]{
        {typeid(StreamingPluginException), "StreamingPluginException"},
        {typeid(ConfigurationPluginException), "ConfigurationPluginException"},
        {typeid(TimeoutPluginException), "TimeoutPluginException"},
        {typeid(ArgumentPluginException), "ArgumentPluginException"},
        {typeid(IOPluginException), "IOPluginException"},
        {typeid(NotSupportedPluginException), "NotSupportedPluginException"},
        {typeid(InitializationPluginException), "InitializationPluginException"},
        {typeid(InvalidOperationPluginException), "InvalidOperationPluginException"},
        {typeid(UnauthorizedAccessPluginException), "UnauthorizedAccessPluginException"},
    };
    const auto found = std::find_if(std::begin(known), std::end(known), [&thrown](const KnownException& one) {
        return one.type == typeid(thrown);
    });
    return found == std::end(known) ? nullptr : found->name;
}

CallResult call(const std::function<std::string()>& work) {
    using Kind = CallResult::Kind;
    try {
        return {Kind::Returned, {}, work(), {}};
    } catch (const Finding& finding) {
        return {Kind::Found, {}, finding.observed, finding};
    } catch (const PluginException& thrown) {
        if (const char* const name = nameOf(thrown))
            return {Kind::Refused, thrown.type(), Format("%: %") % name % thrown.what(), {}};
        return {Kind::Derived, thrown.type(), Format("a class of its own: %") % thrown.what(), {}};
    } catch (const std::exception& thrown) {
        return {Kind::Foreign, {}, Format("% (%)") % thrown.what() % typeid(thrown).name(), {}};
    } catch (...) {
        return {Kind::Foreign, {}, "something that is no std::exception", {}};
    }
}

void judgeReturn(CheckedStep& step, Wanted wanted) {
    if (wanted != Wanted::Refusal)
        return;
    step.verdict = StepVerdict::Remark;
    step.observed = step.observed.empty() ? "was accepted" : "was accepted: " + step.observed;
    step.consequence = "a host takes it for done";
    step.remedy = "look at the arguments and the state first, and throw ArgumentPluginException, "
                  "ConfigurationPluginException or InvalidOperationPluginException";
}

void judgeRefusal(CheckedStep& step, Wanted wanted, const CallResult& result) {
    step.observed = "throws " + result.text;
    const bool isUnsupported = result.type == PluginExceptionType_NOT_SUPPORTED;
    if (wanted == Wanted::Refusal || wanted == Wanted::Either ||
        (wanted == Wanted::Optional && isUnsupported))
        return;
    step.verdict = StepVerdict::Failed;
    step.consequence = "a host gets this exception where it asked for nothing wrong, and cannot go on";
    step.remedy = "make it work after the operations before it in this list, in their order";
}

CheckedStep judge(const StepName& name, Wanted wanted, const CallResult& result, double milliseconds,
                  std::chrono::milliseconds patience) {
    using Kind = CallResult::Kind;
    CheckedStep step{name.part, name.name, StepVerdict::Passed, result.text, {}, {}, milliseconds};
    switch (result.kind) {
    case Kind::Returned:
        judgeReturn(step, wanted);
        break;
    case Kind::Refused:
        judgeRefusal(step, wanted, result);
        break;
    case Kind::Derived:
        step.verdict = StepVerdict::Remark;
        step.observed = "throws " + result.text;
        step.consequence = "a host gets the plug-in exception that it derives from";
        step.remedy = "throw one of the nine of zentara/plugin/plugin_exceptions.h as it is";
        break;
    case Kind::Foreign:
        step.verdict = StepVerdict::Failed;
        step.observed = "throws no plug-in exception: " + result.text;
        step.consequence =
            "a host gets an I/O failure without a reason from a device, and from any other kind an "
            "exception that may end it";
        step.remedy = "catch what the code below throws, and throw one of the nine of "
                      "zentara/plugin/plugin_exceptions.h";
        break;
    case Kind::Found:
        step.verdict = result.finding.verdict;
        step.consequence = result.finding.consequence;
        step.remedy = result.finding.remedy;
        break;
    }
    if (milliseconds > static_cast<double>(patience.count()) && step.verdict != StepVerdict::Failed) {
        step.verdict = StepVerdict::Failed;
        step.observed = Format("took % s; %") % (milliseconds / 1000) % step.observed;
        step.consequence = Format("whoever calls it gives up after % s, and others wait behind it") %
                           (static_cast<double>(patience.count()) / 1000);
        step.remedy = "give each transfer a timeout, and let cancelIO() and exit() end what waits";
    }
    return step;
}

} // namespace

CheckRun::CheckRun(std::FILE* report, std::chrono::milliseconds stepLimit, std::set<std::string> leftOut)
    : file(report), limit(stepLimit), skipped(std::move(leftOut)) {
    // It ends with the process, whose end does not wait for it.
    std::thread([this] { watch(); }).detach();
}

bool CheckRun::reported(const StepName& name, Wanted wanted, const std::function<std::string()>& work,
                        std::chrono::milliseconds patience) {
    if (skipped.count(stepKey(name.part, name.name)) != 0)
        return false;
    begin(name);
    const CallResult result = call(work);
    std::chrono::steady_clock::duration taken{};
    {
        const std::lock_guard hold(lock);
        taken = std::chrono::steady_clock::now() - startedAt;
        busy = false;
    }
    const std::chrono::duration<double, std::milli> milliseconds = taken;
    tell(judge(name, wanted, result, milliseconds.count(), patience));
    return result.kind == CallResult::Kind::Returned;
}

void CheckRun::tell(const CheckedStep& step) {
    std::fprintf(file, "%s%s\n", stepLineMark,
                 toJson(step).dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
}

void CheckRun::abandon(const std::string& why) {
    tell({endingPart,
          "everything else",
          StepVerdict::NotRun,
          why,
          {},
          "mend what failed before, and check again",
          0});
    Utils::Platform::endProcess(Failure::None);
}

void CheckRun::quietly(const std::function<void()>& work) noexcept {
    try {
        work();
    } catch (...) { // NOLINT: what it was has been told by the step that did the same
    }
}

void CheckRun::begin(const StepName& name) {
    const std::lock_guard hold(lock);
    current = stepKey(name.part, name.name);
    std::fprintf(file, "%s%s\n", beginMark, current.c_str());
    startedAt = std::chrono::steady_clock::now();
    busy = true;
    changed.notify_all();
}

void CheckRun::watch() {
    std::unique_lock hold(lock);
    for (;;) {
        changed.wait(hold, [this] { return busy; });
        const auto begun = startedAt;
        changed.wait_until(hold, begun + limit);
        if (!busy || startedAt != begun || std::chrono::steady_clock::now() < begun + limit)
            continue;
        std::fprintf(file, "%s%s\n", lateMark, current.c_str());
        Utils::Platform::endProcess(Failure::TimedOut);
    }
}

std::string stepKey(const std::string& part, const std::string& name) { return part + ": " + name; }

Json toJson(const CheckedStep& step) {
    std::string observed = Utils::visibleText(step.observed);
    if (observed.size() > longestText)
        observed = Utils::visibleText(observed.substr(0, longestText)) + " ...";
    return {{"part", step.part},
            {"name", step.name},
            {"verdict", static_cast<int>(step.verdict)},
            {"observed", observed},
            {"consequence", step.consequence},
            {"remedy", step.remedy},
            {"milliseconds", step.milliseconds}};
}

CheckedStep stepOf(const Json& json) {
    return {json.at("part").get<std::string>(),
            json.at("name").get<std::string>(),
            static_cast<StepVerdict>(json.at("verdict").get<int>()),
            json.at("observed").get<std::string>(),
            json.at("consequence").get<std::string>(),
            json.at("remedy").get<std::string>(),
            json.at("milliseconds").get<double>()};
}

} // namespace Zentara::Host::Check
