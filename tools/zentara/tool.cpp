#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/host/nearest_word.h>
#include <zentara/host/own_root.h>
#include <zentara/host/user_log.h>
#include <zentara/utils/format.h>
#include <zentara/version.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/pages/examples.h"
#include "tools/zentara/supervisor.h"
#include "tools/zentara/tool_log.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

constexpr const char* footer = R"(Environment:
  ZENTARASDK_ROOT    where the SDK is installed; plug-ins lie in "bin/Plugins/" below it
  ZENTARASDK_LOG     what to log and where: LEVEL[,AREA=LEVEL...][@TARGET]; levels off, critical, error, warning,
                     info; areas plugins, devices, chips, rom, streams; target a file, -, or STDERR unless given
  ZENTARA_SIMULATED  settings of the simulated cameras, or @FILE with them
  ZENTARA_SIMULATED_CAMERAS  a file that says which simulated cameras are plugged in
  ZENTARA_SIMULATED_CHIP  the controller of a bare simulated device (--direct), or none

Exit codes:
  0 done   1 failed   2 usage   3 no device   4 no usable plug-in   5 permission
  6 busy   7 timed out   8 verification failed   130 interrupted

Data goes to standard output, everything else to standard error.
"zentara help VERB", or "zentara VERB --help", tells about one verb. With --json a failure is told on
standard output as well.)";

constexpr double usualPatience = 15; ///< longer than the library waits for a worker that is stuck
constexpr double leastPatience = 0.1;

std::string versionText() {
    return Utils::Format("zentara %.%.% build %") % ZENTARA_SDK_VERSION_MAJOR % ZENTARA_SDK_VERSION_MINOR %
           ZENTARA_SDK_VERSION_PATCH % ZENTARA_SDK_VERSION_BUILD;
}

/// Whatever ends a verb is told here, once: nothing is thrown past it.
ExitCode runVerb(const Verb& verb, Console& console) {
    const auto showLog = [] {
        if (ToolLog* log = ToolLog::current())
            log->show(); // it comes before the failure that it explains
    };
    try {
        const ExitCode code = verb.run(console);
        showLog();
        return code;
    } catch (const Failure& failure) {
        showLog();
        tellFailure(console, failure);
        return failure.code();
    } catch (const std::bad_alloc&) {
        tellFailure(console, {Failure::Failed, "there is not enough memory"});
        return Failure::Failed;
    } catch (const std::exception& failure) {
        showLog();
        tellFailure(console, {Failure::Failed, "unexpected failure", printable(failure.what())});
        return Failure::Failed;
    }
}

/// Which verb, and which of its actions, has been named; what is wrong with the words may come after it.
void noteVerb(const CLI::App& program, Console& console) {
    for (const CLI::App* verb : program.get_subcommands()) {
        console.verb = verb->get_name();
        for (const CLI::App* action : verb->get_subcommands())
            console.action = action->get_name();
    }
}

/// What one of several verbs could be called; the program's own, or a verb's actions.
std::vector<std::string> namesOf(const CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; })) {
        if (!verb->get_name().empty()) // a group of options has none
            names.push_back(verb->get_name());
    }
    return names;
}

/// A word that stands where a verb is wanted and is none is named, with the verb that was probably meant.
/// \throws Failure
void checkVerbs(const CLI::App& program, const std::vector<std::string>& arguments, Console& console) {
    const CLI::App* level = &program;
    bool isValue = false; // of the option before it
    for (const std::string& word : arguments) {
        if (std::exchange(isValue, false) || word.empty())
            continue;
        if (word.front() == '-') {
            const CLI::Option* option = level->get_option_no_throw(word);
            isValue = option != nullptr && option->get_items_expected_max() > 0;
            continue;
        }
        const std::vector<std::string> names = namesOf(*level);
        if (names.empty())
            return; // it takes words of its own
        if (std::find(names.begin(), names.end(), word) == names.end()) {
            const std::string nearest = nearestWord(word, names);
            throw Failure(
                Failure::Usage, "there is no verb '" + word + "'", {},
                (nearest.empty() ? "" : "did you mean '" + console.words() + " " + nearest + "'? ") + "'" +
                    console.words() + " --help' lists them");
        }
        level = level->get_subcommand(word);
        (level->get_parent() == &program ? console.verb : console.action) = word;
    }
}

/// "help VERB" is "VERB --help".
void turnHelp(std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments.front() != "help")
        return;
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
}

bool asksForJson(const std::vector<std::string>& arguments) {
    return std::any_of(arguments.begin(), arguments.end(), [](const std::string& word) {
        return word == "--json" ||
               (word.rfind("--json=", 0) == 0 && CLI::detail::to_flag_value(word.substr(7)) > 0);
    });
}

/// A program that did all is not done while nobody has its output.
ExitCode endOfOutput(ExitCode code, Console& console) {
    console.out.flush();
    if (code != Failure::None || console.out)
        return code;
    tellLine(console.err, "zentara: cannot write to standard output");
    return Failure::Failed;
}

struct NamedVerb {
    const char* name;
    Verb (*add)(CLI::App& program);
};
constexpr NamedVerb allVerbs[]{{"plugins", addPluginsVerb}, {"devices", addDevicesVerb},
                               {"info", addInfoVerb},       {"stream", addStreamVerb},
                               {"view", addViewVerb},       {"params", addParamsVerb},
                               {"sensors", addSensorsVerb}, {"calibration", addCalibrationVerb},
                               {"xu", addXuVerb},           {"reg", addRegVerb},
                               {"i2c", addI2cVerb},         {"firmware", addFirmwareVerb},
                               {"meta", addMetaVerb},       {"modfreq", addModfreqVerb},
                               {"rom", addRomVerb},         {doctorVerb, addDoctorVerb}};

/// Where a verb comes first, that one alone: the options of all take longer to make than many a verb takes.
std::vector<Verb> addVerbs(CLI::App& program, const std::vector<std::string>& arguments) {
    std::vector<Verb> added;
    for (const NamedVerb& verb : allVerbs) {
        if (!arguments.empty() && arguments.front() == verb.name)
            return {verb.add(program)};
    }
    for (const NamedVerb& verb : allVerbs)
        added.push_back(verb.add(program));
    added.push_back(addCompletionVerb(program, versionText())); // it tells of all the others
    return added;
}

/// Help and version end the parse as well; they are no errors and go to standard output.
ExitCode endOfParse(const CLI::App& program, const CLI::ParseError& reason, Console& console) {
    if (reason.get_exit_code() == 0) {
        static_cast<void>(program.exit(reason, console.out, console.err));
        return endOfOutput(Failure::None, console);
    }
    const std::string what = reason.what();
    const bool verbMissing = what == "A subcommand is required";
    const Failure failure(Failure::Usage, verbMissing ? "name a verb" : what, {},
                          "'" + console.words() + " --help' tells more");
    tellFailure(console, failure);
    return failure.code();
}

} // namespace

int runTool(std::vector<std::string> arguments, Console& console) {
    if (arguments.size() == 1 &&
        arguments.front() == "--version") { // without a verb's options, which take a while
        console.out << versionText() << '\n';
        return endOfOutput(Failure::None, console);
    }
    CLI::App program("Looks after time-of-flight depth cameras: what is plugged in, and what it sees.",
                     "zentara");
    program.set_version_flag("--version", versionText());
    bool log = false;
    program.add_flag("--log", log, "Show what the library logs, warnings and errors, on standard error");
    double patience = usualPatience;
    program
        .add_option("--patience", patience,
                    "How long one step of a plug-in or a device may take: 15 unless given")
        ->type_name("SECONDS")
        ->check(secondsBetween(leastPatience, longestWatch));
    program.allow_windows_style_options(false); // what begins with "/" is a path everywhere
    program.require_subcommand(1);
    program.get_formatter()->label("SUBCOMMAND", "VERB");
    turnHelp(arguments);
    const std::vector<Verb> verbs = addVerbs(program, arguments);
    refuseEmptyWords(program);
    addExamples(program);
    program.footer(footer); // after the verbs: they would take it over
    console.json = asksForJson(arguments);
    try {
        checkVerbs(program, arguments, console);
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
        program.parse(std::move(arguments));
    } catch (const Failure& failure) {
        tellFailure(console, failure);
        return failure.code();
    } catch (const CLI::ParseError& reason) {
        noteVerb(program, console);
        return endOfParse(program, reason, console);
    }
    noteVerb(program, console);
    const auto chosen =
        std::find_if(verbs.begin(), verbs.end(), [](const Verb& verb) { return verb.command->parsed(); });
    std::optional<ToolLog> logged; // before the supervisor: that shows the log also while a verb hangs
    try {
        Host::beginUserLog();
        if (const auto target = Host::userLogTarget(); log && target && *target != "STDERR")
            note(console, "--log adds nothing: the log goes to '" + *target + "', as ZENTARASDK_LOG says");
        if (log || !chosen->isBounded)
            logged.emplace(log);
    } catch (const Failure& failure) {
        if (console.verb != doctorVerb) { // which tells it beside all else that is wrong
            tellFailure(console, failure);
            return failure.code();
        }
        logged.emplace(log);
    }
    std::optional<Supervisor> supervisor;
    if (!chosen->isBounded)
        supervisor.emplace(console, patience);
    useProgramRootIfNone();
    return endOfOutput(runVerb(*chosen, console), console);
}

} // namespace Zentara::Tool
