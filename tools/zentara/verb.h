#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/zentara/console.h"

namespace CLI {
class App;
}

namespace Zentara::Tool {

/// A verb of the command line. `run` is called when the user named it, after its options have been read.
struct Verb {
    CLI::App* command = nullptr;
    std::function<ExitCode(Console&)> run;
    bool isBounded = false; ///< it waits for nobody without a limit of its own: nobody need watch it
};

/// The verb that looks at the environment as it is: nothing is refused before it has said what is wrong.
inline constexpr const char* doctorVerb = "doctor";

/// Each adds one verb, with its options, to the program.
[[nodiscard]] Verb addCalibrationVerb(CLI::App& program);
/// \param version for the manual page
[[nodiscard]] Verb addCompletionVerb(CLI::App& program, const std::string& version);
[[nodiscard]] Verb addDevicesVerb(CLI::App& program);
[[nodiscard]] Verb addDoctorVerb(CLI::App& program);
[[nodiscard]] Verb addFirmwareVerb(CLI::App& program);
[[nodiscard]] Verb addI2cVerb(CLI::App& program);
[[nodiscard]] Verb addInfoVerb(CLI::App& program);
[[nodiscard]] Verb addMetaVerb(CLI::App& program);
[[nodiscard]] Verb addModfreqVerb(CLI::App& program);
[[nodiscard]] Verb addParamsVerb(CLI::App& program);
[[nodiscard]] Verb addPluginsVerb(CLI::App& program);
[[nodiscard]] Verb addRegVerb(CLI::App& program);
[[nodiscard]] Verb addRomVerb(CLI::App& program);
[[nodiscard]] Verb addSensorsVerb(CLI::App& program);
[[nodiscard]] Verb addStreamVerb(CLI::App& program);
[[nodiscard]] Verb addViewVerb(CLI::App& program);
[[nodiscard]] Verb addXuVerb(CLI::App& program);

/// Runs the tool. \param arguments without the program's name, UTF-8. \return the exit code
[[nodiscard]] int runTool(std::vector<std::string> arguments, Console& console);

} // namespace Zentara::Tool
