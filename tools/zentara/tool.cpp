#include <algorithm>
#include <exception>

#include <zentara/utils/format.h>
#include <zentara/version.h>

#include "tools/zentara/program_root.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

constexpr const char* footer = R"(Environment:
  ZENTARASDK_ROOT    where the SDK is installed; plug-ins lie in "bin/Plugins/" below it
  ZENTARA_SIMULATED  settings of the simulated camera, or @FILE with them
  ZENTARA_SIMULATED_CAMERAS  a file that says which simulated cameras are plugged in
  ZENTARA_SIMULATED_CHIP  its controller: OV0570, VC0258, VC0345 or none

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
        console.err << "zentara " << verb.command->get_name() << ": " << failure.what() << '\n';
        return failure.code;
    } catch (const std::exception& failure) {
        console.err << "zentara " << verb.command->get_name() << ": unexpected failure: " << failure.what()
                    << '\n';
        return ExitCode_FAILED;
    }
}

/// Help and version end the parse as well; they are no errors and go to standard output.
ExitCode endOfParse(const CLI::App& program, const CLI::ParseError& reason, Console& console) {
    const int code = program.exit(reason, console.out, console.err);
    return code == 0 ? ExitCode_DONE : ExitCode_USAGE;
}

} // namespace

int runTool(std::vector<std::string> arguments, Console& console) {
    CLI::App program("Looks after time-of-flight depth cameras: what is plugged in, and what it sees.",
                     "zentara");
    program.footer(footer);
    program.set_version_flag("--version", versionText());
    program.require_subcommand(1);
    program.get_formatter()->label("SUBCOMMAND", "VERB");
    const std::vector<Verb> verbs{
        addPluginsVerb(program), addDevicesVerb(program), addInfoVerb(program),        addStreamVerb(program),
        addParamsVerb(program),  addSensorsVerb(program), addCalibrationVerb(program), addXuVerb(program),
        addRegVerb(program),     addI2cVerb(program),     addFirmwareVerb(program),    addMetaVerb(program),
        addModfreqVerb(program), addRomVerb(program)};
    try {
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& reason) {
        return endOfParse(program, reason, console);
    }
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
