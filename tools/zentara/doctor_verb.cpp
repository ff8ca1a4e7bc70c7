#include <algorithm>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include <zentara/host/health.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "tools/zentara/json_output.h"
#include "tools/zentara/text_columns.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using State = HealthFinding::State;

struct DoctorOptions {
    std::string system = "/";
    bool json = false;
};

const char* stateName(State state) {
    switch (state) {
    case State::Well:
        return "well";
    case State::Hint:
        return "note";
    case State::Wrong:
        break;
    }
    return "wrong";
}

void printHealth(std::ostream& out, const HealthReport& report, std::ptrdiff_t wrong) {
    for (const HealthFinding& finding : report) {
        out << padded(stateName(finding.state), 7) << padded(finding.check, 19) << finding.text << '\n';
        if (!finding.remedy.empty())
            out << std::string(26, ' ') << "remedy: " << finding.remedy << '\n';
    }
    out << (wrong == 0   ? std::string("nothing is wrong")
            : wrong == 1 ? std::string("1 thing is wrong")
                         : std::to_string(wrong) + " things are wrong")
        << '\n';
}

Json healthJson(const HealthReport& report, bool isWell, const Console& console) {
    Json json = beginJson(console);
    json["well"] = isWell;
    json["findings"] = Json::array();
    for (const HealthFinding& finding : report)
        json["findings"].push_back({{"check", finding.check},
                                    {"state", stateName(finding.state)},
                                    {"text", finding.text},
                                    {"remedy", orNull(finding.remedy)}});
    return json;
}

ExitCode runDoctor(const DoctorOptions& options, Console& console) {
    const HealthReport report = examine(
        {.plugins = {.program = console.program}, .system = Utils::addTrailingSeparator(options.system)});
    const auto wrong = std::count_if(report.begin(), report.end(), [](const HealthFinding& finding) {
        return finding.state == State::Wrong;
    });
    if (options.json)
        print(console.out, healthJson(report, wrong == 0, console));
    else
        printHealth(console.out, report, wrong);
    return wrong == 0 ? Failure::None : Failure::Failed;
}

} // namespace

Verb addDoctorVerb(CLI::App& program) {
    auto options = std::make_shared<DoctorOptions>();
    CLI::App* command =
        program
            .add_subcommand(
                doctorVerb,
                "Looks at everything that may keep programs from their cameras, and says what helps")
            ->group("Verbs");
    command->footer(
        "Install root, plug-ins, versions of the library, log, permissions, who has a camera open, "
        "USB speed, shared\n"
        "memory. Nothing is changed. Exit code 1 when something is wrong; a note is not.");
    command
        ->add_option("--system", options->system,
                     "Where the system's files begin, as of a container that is looked at from outside")
        ->type_name("DIRECTORY");
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options](Console& console) { return runDoctor(*options, console); }};
}

} // namespace Zentara::Tool
