#include <zentara/host/plugin_check.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

#include <zentara/core/impl_type.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/host/failure.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/install_root.h>
#include <zentara/utils/text.h>

#include "host/files/paths.h"
#include "host/guid_text.h"
#include "host/json.h"
#include "host/plugins/check/check_run.h"
#include "host/plugins/check/plugin_check_child.h"
#include "host/plugins/plugin_question.h"
#include "host/plugins/refused_by_scan.h"
#include "utils/platform/child_process.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

namespace fs = std::filesystem;
using Check::libraryPart;
using Utils::Format;
using Utils::Platform::ChildEnd;
using namespace std::chrono_literals;

namespace {

constexpr auto wholeLimit = 120s;
constexpr std::size_t mostRuns = 6; ///< each but the last ended before its time

/// An install root in the system's place for temporary files, with the checked file and, unless it is to be alone, links
/// to everything that lies in the real one. Gone with the object.
class RootAround {
public:
    RootAround(const std::string& file, bool isAlone) : place(fs::temp_directory_path() / ownName()) {
        std::error_code error;
        fs::create_directories(place / "bin" / "Plugins", error);
        if (error)
            throw Failure(Failure::Failed, Format("cannot make an install root to check '%' in") % file,
                          error.message());
        // First in the order of names: what has the same GUID is a duplicate of it.
        own = place / "bin" / "Plugins" / ("0 checked." + std::string(Core::pluginFileExtension()));
        lay(fs::absolute(pathOf(file)), own);
        std::string root;
        std::string suffix;
        if (isAlone || Utils::getZTRootDirectory(root, suffix) != 0)
            return;
        for (const char* const folder : {"bin/Plugins", "cameras"})
            for (fs::directory_iterator entry(pathOf(root + folder), error);
                 !error && entry != fs::directory_iterator(); entry.increment(error))
                if (fs::is_regular_file(entry->path(), error)) {
                    fs::create_directories(place / folder, error);
                    lay(entry->path(), place / folder / entry->path().filename());
                }
    }
    ~RootAround() {
        std::error_code ignored;
        fs::remove_all(place, ignored);
    }
    RootAround(const RootAround&) = delete;
    RootAround& operator=(const RootAround&) = delete;

    [[nodiscard]] std::string path() const { return utf8Of(place / ""); }
    [[nodiscard]] std::string file() const { return utf8Of(own); }

private:
    static std::string ownName() {
        static std::atomic<unsigned> number = 0;
        return "zentara-check-" +
               std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()) + "-" +
               std::to_string(number++);
    }
    /// By whatever the system lets us do.
    static void lay(const fs::path& from, const fs::path& to) {
        std::error_code error;
        fs::create_symlink(from, to, error);
        if (error)
            fs::create_hard_link(from, to, error);
        if (error)
            fs::copy_file(from, to, error);
    }

    const fs::path place;
    fs::path own;
};

/// The install root of the children that are started meanwhile.
class RootVariable {
public:
    explicit RootVariable(const std::string& root) : variable("ZENTARASDK_ROOT") {
        const char* const now = variable.getValue();
        before = now == nullptr ? "" : now;
        variable.setValue(root.c_str());
    }
    ~RootVariable() { variable.setValue(before.c_str()); }
    RootVariable(const RootVariable&) = delete;
    RootVariable& operator=(const RootVariable&) = delete;

private:
    Utils::EnvironmentVariable variable;
    std::string before;
};

/// The steps of the scan, as far as the file got.
bool reportScan(const PluginAnswer& answer, PluginReport& report) {
    using Core::PluginScanStep;
    const Core::PluginProbe& probe = answer.probe;
    const struct {
        PluginScanStep step;
        const char* name;
    } scan[]{
        {PluginScanStep::Name, "its name has not the mark of a debug build"},
        {PluginScanStep::Open, "the system loads it"},
        {PluginScanStep::ImplGUID, "getImplGUID"},
        {PluginScanStep::ImplType, "getImplType"},
        {PluginScanStep::PluginVersion, "getPluginVersion"},
        {PluginScanStep::SDKVersion, "getSDKVersion"},
        {PluginScanStep::Accepted, "it is closed again"},
    };
    for (const auto& row : scan) {
        const bool isLast = row.step == PluginScanStep::Accepted;
        CheckedStep step{libraryPart, row.name, StepVerdict::Passed, "", "", "", 0};
        if (row.step == probe.step && (!isLast || answer.isFatal)) {
            const RefusedFile refused = refusedByScan(answer);
            step.verdict = StepVerdict::Failed;
            step.observed =
                refused.reason +
                (refused.wanted.empty() ? "" : "; found " + refused.found + ", wanted " + refused.wanted);
            step.consequence = answer.isFatal ? "every program that looks for plug-ins ends, or waits, here"
                                              : "no host sees it; 'zentara plugins --all' says why";
            step.remedy = refused.remedy;
            report.steps.push_back(step);
            return false;
        }
        report.steps.push_back(step);
    }
    return true;
}

CheckedStep fatalStep(const std::string& key, const ChildEnd& end, bool isLate,
                      std::chrono::milliseconds limit) {
    const std::size_t colon = key.find(": ");
    CheckedStep step{key.substr(0, colon),
                     key.substr(colon == std::string::npos ? 0 : colon + 2),
                     StepVerdict::Failed,
                     "",
                     "",
                     "",
                     0};
    if (isLate || end.kind == ChildEnd::Kind::TimedOut) {
        step.observed = Format("hangs: no end after % s") % (static_cast<double>(limit.count()) / 1000);
        step.consequence =
            "a caller of a device gives up after 2 s, and all devices wait behind it; any other host waits "
            "for ever";
        step.remedy =
            "give each wait a limit, and let cancelIO(), exit(), dispose() and disableStreaming() end it";
    } else if (end.kind == ChildEnd::Kind::Crashed) {
        step.observed = "crashes: " + end.text;
        step.consequence = "the host ends without a word";
        step.remedy = "start 'zentara' under a debugger with the arguments of a verb that comes to this "
                      "operation; look for "
                      "null pointers and sizes that are taken unseen";
    } else {
        step.observed = Format("ends the process with exit code %") % end.number;
        step.consequence = "the host ends in the middle of its work";
        step.remedy =
            "throw one of the plug-in exceptions; a plug-in never calls exit(), abort() or terminate()";
    }
    return step;
}

/// What one child told.
struct ChildReport {
    std::vector<CheckedStep> steps;
    std::string unfinished; ///< the step that was begun last, where it did not end
    bool isLate = false;
};

ChildReport read(const std::string& report) {
    ChildReport told;
    for (const std::string& line : Utils::split(report, '\n')) {
        const auto follows = [&line](const char* mark) { return line.substr(std::string(mark).size()); };
        if (line.starts_with(Check::beginMark)) {
            told.unfinished = follows(Check::beginMark);
        } else if (line.starts_with(Check::lateMark)) {
            told.isLate = true;
        } else if (line.starts_with(Check::stepLineMark)) {
            try {
                told.steps.push_back(Check::stepOf(Json::parse(follows(Check::stepLineMark))));
                told.unfinished.clear();
            } catch (const Json::exception&) { // NOLINT: what the plug-in has written there itself
            }
        }
    }
    return told;
}

bool isKnown(const PluginReport& report, const CheckedStep& step) {
    return std::any_of(report.steps.begin(), report.steps.end(), [&step](const CheckedStep& other) {
        return other.part == step.part && other.name == step.name;
    });
}

/// Runs the child until one comes to the end; each starts without the steps that ended one before, and without the other
/// plug-ins once one of them has.
void runChildren(PluginReport& report, const PluginQuestions& questions) {
    bool isAlone = false;
    std::string leftOut;
    for (std::size_t run = 0; run < mostRuns; ++run) {
        const RootAround around(report.path, isAlone);
        const RootVariable variable(around.path());
        std::string text;
        const ChildEnd end = Utils::Platform::runChild(questions.program,
                                                       {Check::checkWord, around.file(),
                                                        std::to_string(questions.limit.count()),
                                                        leftOut.empty() ? "|" : leftOut},
                                                       programStartLimit, wholeLimit, text);
        if (end.kind == ChildEnd::Kind::NotStarted)
            throw Failure(Failure::Failed, Format("cannot start '%' to check a plug-in") % questions.program,
                          end.text);
        const ChildReport told = read(text);
        for (const CheckedStep& step : told.steps)
            if (!isKnown(report, step))
                report.steps.push_back(step);
        if (told.unfinished.empty() && end.kind == ChildEnd::Kind::Exited)
            return;
        const std::string key = told.unfinished.empty() ? "ending: between two steps" : told.unfinished;
        if (key == Check::stepKey(Check::objectPart, Check::scanStep) && !std::exchange(isAlone, true)) {
            report.steps.push_back({Check::objectPart, "the other plug-ins of the install root",
                                    StepVerdict::NotRun, "one of them ends the process that looks at it", "",
                                    "'zentara plugins --all' names it: take it out", 0});
            continue;
        }
        const CheckedStep fatal = fatalStep(key, end, told.isLate, questions.limit);
        const bool isNew = !isKnown(report, fatal);
        if (isNew)
            report.steps.push_back(fatal);
        if (!isNew || told.unfinished.empty())
            return;
        leftOut += "|" + key;
    }
}

} // namespace

const char* stepVerdictName(StepVerdict verdict) noexcept {
    switch (verdict) {
    case StepVerdict::Passed:
        return "passed";
    case StepVerdict::Remark:
        return "remark";
    case StepVerdict::Failed:
        return "failed";
    case StepVerdict::NotRun:
        break;
    }
    return "not run";
}

std::size_t PluginReport::count(StepVerdict verdict) const {
    return static_cast<std::size_t>(std::count_if(
        steps.begin(), steps.end(), [verdict](const CheckedStep& step) { return step.verdict == verdict; }));
}

PluginReport checkPlugin(const std::string& path, const PluginQuestions& questions) {
    std::error_code error;
    if (!fs::is_regular_file(pathOf(path), error))
        throw Failure(Failure::Usage, Format("cannot check '%'") % Utils::visibleText(path),
                      error ? error.message() : std::string("it is no file"));
    PluginReport report;
    report.path = path;
    // Of a bare name the system would look in the directories of its libraries.
    const PluginAnswer answer = askPlugin(questions, utf8Of(fs::absolute(pathOf(path))));
    report.name = {guidName(answer.probe.guid), answer.probe.guid};
    report.type = answer.probe.type;
    if (report.type != 0)
        report.kind = Core::implTypeName(report.type);
    if (reportScan(answer, report))
        runChildren(report, questions);
    return report;
}

} // namespace Zentara::Host
