#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/host/camera_report.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/info_page.h"

namespace Zentara::Tool {
namespace {

ExitCode runInfo(const CameraOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        const CameraReport report = reportOf(session.camera());
        const Json json = Json::parse(report.json);
        session.finish(json, options.json ? std::string() : infoPage(session.camera().info(), json));
        return report.code;
    });
}

} // namespace

Verb addInfoVerb(CLI::App& program) {
    auto options = std::make_shared<CameraOptions>();
    CLI::App* command =
        program
            .add_subcommand("info", "Tells what a camera is: nodes, modes, firmware, hardware, "
                                    "calibration, temperatures")
            ->group("Verbs");
    command->footer(
        "A camera without a depth node tells what its description says. Names of modes are for\n"
        "'zentara stream --mode'. What the camera does not answer stands in its place as failure.");
    addCameraOptions(*command, *options);
    command->add_option("NAME", options->camera, "The same as --camera NAME")
        ->type_name("")
        ->check(anyName("camera"))
        ->excludes(command->get_option("--camera"));
    return {command, [options](Console& console) { return runInfo(*options, console); }};
}

} // namespace Zentara::Tool
