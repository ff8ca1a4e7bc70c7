#include "host/plugins/plugin_question.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <map>

#include <zentara/host/failure.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/json.h"
#include "host/plugins/check/plugin_check_child.h"
#include "utils/platform/child_process.h"
#include "utils/platform/program.h"

namespace Zentara::Host {
namespace {

using Core::PluginProbe;
using Core::PluginScanStep;
using Utils::Format;
using Utils::Platform::ChildEnd;
using namespace std::chrono_literals;

constexpr const char* question = "--ask-plugin";       // FILE CHANNEL
constexpr const char* questionToAll = "--ask-plugins"; // DIRECTORY CHANNEL
constexpr std::size_t atATime = 4;                     // programs
constexpr int shareForAll = 5;                         // all together may take this part of what one may

// A report has a line for each step that begins, "step NUMBER", and when the file is closed again one with what was
// found, "probe JSON". One of several files has a line for each that is accepted, "accepted NUMBERS PATH".
constexpr const char* stepMark = "step ";
constexpr const char* probeMark = "probe ";
constexpr const char* acceptedMark = "accepted";

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

void refuseNoStart(const std::string& program, const ChildEnd& end) {
    if (end.kind == ChildEnd::Kind::NotStarted)
        throw Failure(Failure::Failed,
                      Format("cannot start '%' to ask the plug-ins: %") % program % end.text);
}

/// What is told of an accepted file.
struct Numbers {
    GUID guid;
    std::int32_t type;
    std::array<std::int32_t, 3> pluginVersion;
    std::array<std::int32_t, 4> sdkVersion;
};
using Words = std::array<std::uint32_t, sizeof(Numbers) / sizeof(std::uint32_t)>;

std::string toAccepted(const PluginProbe& probe) {
    const Numbers numbers{probe.guid, probe.type, probe.pluginVersion, probe.sdkVersion};
    std::string line = acceptedMark;
    for (const std::uint32_t word : std::bit_cast<Words>(numbers))
        line += ' ' + std::to_string(word);
    return line + ' ' + probe.path + '\n';
}

/// False for another line.
bool readAccepted(const std::string& line, PluginProbe& probe) {
    if (!line.starts_with(acceptedMark))
        return false;
    Words words{};
    const char* rest = line.c_str() + std::strlen(acceptedMark);
    for (std::uint32_t& word : words) {
        char* end = nullptr;
        word = static_cast<std::uint32_t>(std::strtoull(rest, &end, 10));
        if (end == rest)
            return false;
        rest = end;
    }
    const auto numbers = std::bit_cast<Numbers>(words);
    probe.guid = numbers.guid;
    probe.type = numbers.type;
    probe.pluginVersion = numbers.pluginVersion;
    probe.sdkVersion = numbers.sdkVersion;
    probe.step = PluginScanStep::Accepted;
    probe.path = *rest == ' ' ? rest + 1 : "";
    return !probe.path.empty();
}

[[noreturn]] void answerAll(const std::vector<std::string>& arguments) {
    std::FILE* report = Utils::Platform::openReport(arguments[2]);
    if (report == nullptr)
        Utils::Platform::endProcess(Failure::Usage);
    std::fputs("\n", report); // the program has started
    // Told at once, for each line wakes the one who asks. Should a file end the process each one is asked alone.
    std::string accepted;
    for (const std::string& path : Utils::getFileList(arguments[1], Core::pluginFileExtension())) {
        const PluginProbe probe = Core::probePluginFile(path, {});
        if (probe.accepted())
            accepted += toAccepted(probe);
    }
    std::fputs(accepted.c_str(), report);
    Utils::Platform::endProcess(Failure::None);
}

/// Asks all files in one process, as every program does. Believed are those that it accepts: what becomes of another
/// one may be the doing of a file before it.
/// \return what it accepted, by path
std::map<std::string, PluginProbe> askTogether(const PluginQuestions& questions, const std::string& directory,
                                               const std::function<void()>& meanwhile) {
    std::map<std::string, PluginProbe> accepted;
    std::string report;
    const ChildEnd end =
        Utils::Platform::runChild(questions.program, {questionToAll, directory}, programStartLimit,
                                  questions.limit / shareForAll, report, meanwhile, answerAll);
    refuseNoStart(questions.program, end);
    for (const std::string& line : Utils::split(report, '\n')) {
        PluginProbe probe;
        if (readAccepted(line, probe))
            accepted.insert_or_assign(probe.path, std::move(probe));
    }
    return accepted;
}

} // namespace

PluginAnswer askPlugin(const PluginQuestions& questions, const std::string& path) {
    const std::string& program = questions.program;
    if (program.empty())
        return {Core::probePluginFile(path, {}), false};
    std::string report;
    const ChildEnd end =
        Utils::Platform::runChild(program, {question, path}, programStartLimit, questions.limit, report);
    refuseNoStart(program, end);
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

std::vector<PluginAnswer> askPlugins(const PluginQuestions& questions, const std::string& directory,
                                     const std::function<std::vector<std::string>()>& list) {
    std::vector<PluginAnswer> answers;
    if (questions.program.empty()) { // on the caller's thread, as the plug-in manager does
        for (const std::string& path : list())
            answers.push_back(askPlugin(questions, path));
        return answers;
    }
    std::vector<std::string> paths;
    std::map<std::string, PluginProbe> accepted = askTogether(questions, directory, [&] { paths = list(); });
    answers.resize(paths.size());
    std::vector<std::size_t> open;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        const auto found = accepted.find(paths[index]);
        if (found == accepted.end())
            open.push_back(index);
        else
            answers[index].probe = std::move(found->second);
    }
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t index = next++; index < open.size(); index = next++)
            answers[open[index]] = askPlugin(questions, paths[open[index]]);
    };
    std::vector<std::future<void>> workers;
    for (std::size_t count = std::min(atATime, open.size()); count > 0; --count)
        workers.push_back(std::async(std::launch::async, work));
    for (auto& worker : workers)
        worker.get();
    return answers;
}

std::optional<int> answerPluginQuestion(const std::vector<std::string>& arguments) {
    if (const std::optional<int> code = Check::answerPluginCheck(arguments))
        return code;
    if (arguments.size() != 3 || (arguments.front() != question && arguments.front() != questionToAll))
        return std::nullopt;
    if (arguments.front() == questionToAll)
        answerAll(arguments);
    std::FILE* report = Utils::Platform::openReport(arguments[2]);
    if (report == nullptr)
        return Failure::Usage;
    // Each step before it is done: what comes of it may be the end of this process.
    const auto tellStep = [report](PluginScanStep step) {
        std::fprintf(report, "%s%d\n", stepMark, static_cast<int>(step));
    };
    const PluginProbe probe = Core::probePluginFile(arguments[1], tellStep);
    std::fprintf(report, "%s%s\n", probeMark, toReport(probe).c_str());
    Utils::Platform::endProcess(Failure::None); // what a file has left behind for its end is not asked
}

} // namespace Zentara::Host
