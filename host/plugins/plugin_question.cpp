#include "host/plugins/plugin_question.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/json.h"
#include "utils/platform/child_process.h"

namespace Zentara::Host {
namespace {

using Core::PluginProbe;
using Core::PluginScanStep;
using Utils::Format;
using Utils::Platform::ChildEnd;
using namespace std::chrono_literals;

constexpr const char* question = "--ask-plugin"; // FILE CHANNEL
constexpr auto startLimit = 60s;   // for the program itself, which a busy machine may take long to load
constexpr std::size_t atATime = 4; // programs

// A report has a line for each step that begins, "step NUMBER", and when the file is closed again one with what was
// found, "probe JSON".
constexpr const char* stepMark = "step ";
constexpr const char* probeMark = "probe ";

std::string toReport(const PluginProbe& probe) {
    const auto* guid = reinterpret_cast<const unsigned char*>(&probe.guid);
    const Json json{{"step", static_cast<int>(probe.step)},
                    {"guid", std::vector<int>(guid, guid + sizeof probe.guid)},
                    {"type", probe.type},
                    {"pluginVersion", probe.pluginVersion},
                    {"sdkVersion", probe.sdkVersion},
                    {"found", probe.found},
                    {"wanted", probe.wanted},
                    {"text", probe.text}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// False for what the file wrote there itself.
bool readReport(const std::string& text, PluginProbe& probe) {
    try {
        const Json json = Json::parse(text);
        const auto guid = json.at("guid").get<std::array<unsigned char, sizeof probe.guid>>();
        std::copy(guid.begin(), guid.end(), reinterpret_cast<unsigned char*>(&probe.guid));
        probe.step = static_cast<PluginScanStep>(json.at("step").get<int>());
        json.at("type").get_to(probe.type);
        json.at("pluginVersion").get_to(probe.pluginVersion);
        json.at("sdkVersion").get_to(probe.sdkVersion);
        json.at("found").get_to(probe.found);
        json.at("wanted").get_to(probe.wanted);
        json.at("text").get_to(probe.text);
        return true;
    } catch (const Json::exception&) {
        return false;
    }
}

/// Where a file was when it ended the process.
std::string placeOf(PluginScanStep step) {
    switch (step) {
    case PluginScanStep::ImplGUID:
        return "in \"getImplGUID\"";
    case PluginScanStep::ImplType:
        return "in \"getImplType\"";
    case PluginScanStep::PluginVersion:
        return "in \"getPluginVersion\"";
    case PluginScanStep::SDKVersion:
        return "in \"getSDKVersion\"";
    case PluginScanStep::Accepted:
        return "while it is unloaded";
    default:
        return "while it is loaded: its static initialisation runs then";
    }
}

void blame(PluginAnswer& answer, const ChildEnd& end, std::chrono::milliseconds limit) {
    PluginProbe& probe = answer.probe;
    answer.isFatal = true;
    probe.wanted = Format("an answer within % s") % (static_cast<double>(limit.count()) / 1000);
    switch (end.kind) {
    case ChildEnd::Kind::TimedOut:
        probe.found = "no answer";
        probe.text = "hangs " + placeOf(probe.step);
        return;
    case ChildEnd::Kind::Crashed:
        probe.found = end.text;
        probe.text = "crashes " + placeOf(probe.step);
        return;
    default:
        probe.found = Format("exit code %") % end.number;
        probe.text = "ends the process " + placeOf(probe.step);
    }
}

PluginAnswer ask(const PluginQuestions& questions, const std::string& path) {
    const std::string& program = questions.program;
    if (program.empty())
        return {Core::probePluginFile(path, {}), false};
    std::string report;
    const ChildEnd end =
        Utils::Platform::runChild(program, {question, path}, startLimit, questions.limit, report);
    if (end.kind == ChildEnd::Kind::NotStarted)
        throw Failure(Failure::Failed,
                      Format("cannot start '%' to ask the plug-ins: %") % program % end.text);
    PluginAnswer answer;
    answer.probe.path = path;
    // Whoever answered is believed, whatever became of his process; of any other the last step tells where it was.
    for (const std::string& line : Utils::split(report, '\n')) {
        if (line.starts_with(stepMark))
            answer.probe.step =
                static_cast<PluginScanStep>(std::atoi(line.c_str() + std::string(stepMark).size()));
        else if (line.starts_with(probeMark) &&
                 readReport(line.substr(std::string(probeMark).size()), answer.probe))
            return answer;
    }
    blame(answer, end, questions.limit);
    return answer;
}

} // namespace

std::vector<PluginAnswer> askPlugins(const PluginQuestions& questions,
                                     const std::vector<std::string>& paths) {
    std::vector<PluginAnswer> answers(paths.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t index = next++; index < paths.size(); index = next++)
            answers[index] = ask(questions, paths[index]);
    };
    if (questions.program.empty()) {
        work(); // on the caller's thread, as the plug-in manager does
        return answers;
    }
    std::vector<std::future<void>> workers;
    for (std::size_t count = std::min(atATime, paths.size()); count > 0; --count)
        workers.push_back(std::async(std::launch::async, work));
    for (auto& worker : workers)
        worker.get();
    return answers;
}

std::optional<int> answerPluginQuestion(const std::vector<std::string>& arguments) {
    if (arguments.size() != 3 || arguments.front() != question)
        return std::nullopt;
    std::FILE* report = Utils::Platform::openReport(arguments[2]);
    if (report == nullptr)
        return Failure::Usage;
    // Each step before it is done: what comes of it may be the end of this process.
    const auto tellStep = [report](PluginScanStep step) {
        std::fprintf(report, "%s%d\n", stepMark, static_cast<int>(step));
    };
    const PluginProbe probe = Core::probePluginFile(arguments[1], tellStep);
    std::fprintf(report, "%s%s\n", probeMark, toReport(probe).c_str());
    std::_Exit(Failure::None); // what a file has left behind for the end of a process is not asked
}

} // namespace Zentara::Host
