#include <algorithm>
#include <exception>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>
#include <zentara/utils/kv_logger.h>
#include <zentara/version.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/program_root.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

constexpr const char* footer = R"(Environment:
  ZENTARASDK_ROOT    where the SDK is installed; plug-ins lie in "bin/Plugins/" below it
  ZENTARA_SIMULATED  settings of the simulated cameras, or @FILE with them
  ZENTARA_SIMULATED_CAMERAS  a file that says which simulated cameras are plugged in
  ZENTARA_SIMULATED_CHIP  the controller of a bare device (--direct): OV0570, VC0258, VC0345 or none

Exit codes:
  0 done   1 failed   2 usage   3 no device   4 no usable plug-in   5 permission
  6 busy   7 timed out   8 verification failed   130 interrupted

Data goes to standard output, everything else to standard error.
"zentara VERB --help" tells about one verb.)";

std::string versionText() {
    return Utils::Format("zentara %.%.% build %") % ZENTARA_SDK_VERSION_MAJOR % ZENTARA_SDK_VERSION_MINOR %
           ZENTARA_SDK_VERSION_PATCH % ZENTARA_SDK_VERSION_BUILD;
}

ExitCode runVerb(const Verb& verb, Console& console) {
    try {
        return verb.run(console);
    } catch (const ToolFailure& failure) {
        tellFailure(console, failure);
        return failure.code;
    } catch (const std::exception& failure) {
        tellFailure(console, {ExitCode_FAILED, "unexpected failure", failure.what()});
        return ExitCode_FAILED;
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

bool asksForJson(const std::vector<std::string>& arguments) {
    return std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
}

/// The library's log on standard error, for one scope.
class ShownLog {
public:
    explicit ShownLog(bool isWanted) {
        if (isWanted)
            logger = Utils::KVLogger::createInstance(Utils::KVLogLevel_WARNING, "zentara", "STDERR");
    }
    ~ShownLog() {
        if (logger != nullptr)
            Utils::KVLogger::release();
    }
    ShownLog(const ShownLog&) = delete;
    ShownLog& operator=(const ShownLog&) = delete;

private:
    Utils::KVLogger* logger = nullptr;
};

/// Help and version end the parse as well; they are no errors and go to standard output.
ExitCode endOfParse(const CLI::App& program, const CLI::ParseError& reason, Console& console) {
    if (reason.get_exit_code() == 0) {
        static_cast<void>(program.exit(reason, console.out, console.err));
        return ExitCode_DONE;
    }
    const std::string what = reason.what();
    const bool verbMissing = what == "A subcommand is required";
    const ToolFailure failure(ExitCode_USAGE, verbMissing ? "name a verb" : what, {},
                              "'" + console.words() + " --help' tells more");
    tellFailure(console, failure);
    return failure.code;
}

} // namespace

int runTool(std::vector<std::string> arguments, Console& console) {
    CLI::App program("Looks after time-of-flight depth cameras: what is plugged in, and what it sees.",
                     "zentara");
    program.set_version_flag("--version", versionText());
    bool log = false;
    program.add_flag("--log", log, "Show what the library logs, warnings and errors, on standard error");
    program.require_subcommand(1);
    program.get_formatter()->label("SUBCOMMAND", "VERB");
    const std::vector<Verb> verbs{
        addPluginsVerb(program), addDevicesVerb(program), addInfoVerb(program),        addStreamVerb(program),
        addParamsVerb(program),  addSensorsVerb(program), addCalibrationVerb(program), addXuVerb(program),
        addRegVerb(program),     addI2cVerb(program),     addFirmwareVerb(program),    addMetaVerb(program),
        addModfreqVerb(program), addRomVerb(program)};
    refuseEmptyWords(program);
    program.footer(footer); // after the verbs: they would take it over
    console.json = asksForJson(arguments);
    try {
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& reason) {
        noteVerb(program, console);
        return endOfParse(program, reason, console);
    }
    noteVerb(program, console);
    const ShownLog shown(log);
    useProgramRoot();
    const auto chosen =
        std::find_if(verbs.begin(), verbs.end(), [](const Verb& verb) { return verb.command->parsed(); });
    const ExitCode code = runVerb(*chosen, console);
    console.out.flush();
    if (code == ExitCode_DONE && !console.out) {
        console.err << "zentara: cannot write to standard output\n";
        return ExitCode_FAILED;
    }
    return code;
}

} // namespace Zentara::Tool
