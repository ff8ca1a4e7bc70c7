#include <memory>

#include <CLI/CLI.hpp>

#include "host/float_text.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/calibration_json.h"
#include "tools/zentara/cameras/camera_facts.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/info_page.h"

namespace Zentara::Tool {
namespace {

constexpr const char* infoVerb = "info";

/// Adds what one question to the camera brings. A camera that cannot answer it is told of in its place.
template<typename Ask>
void section(Json& json, const char* name, ExitCode& worst, Ask ask) {
    try {
        json[name] = ask();
    } catch (const Unsupported& lack) {
        const std::string cause = lack.cause(); // what the plug-in says stands behind the kind
        const std::string kind = "not supported: ";
        json[name] = {{"notSupported", cause.rfind(kind, 0) == 0 ? cause.substr(kind.size()) : cause}};
    } catch (const Failure& failure) {
        json[name] = {{"failure", failure.cause().empty() ? failure.message() : failure.cause()}};
        worst = worst == Failure::None ? failure.code() : worst;
    }
}

/// What the descriptions say of the whole camera.
Json describeCamera(const Camera& camera) {
    const CameraDescription described = camera.description();
    Json json{{"nodes", Json::array()}};
    for (const NodeDescription& node : described.nodes)
        json["nodes"].push_back(Tool::toJson(node));
    json.update({{"vendor", orNull(camera.info().vendor)},
                 {"hardware", Tool::toJson(described.hardware)},
                 {"deviceFlags", described.deviceFlags},
                 {"deviceCapabilities", described.deviceCapabilities}});
    return json;
}

Json temperaturesJson(const Camera& camera) {
    Json json = Json::array();
    for (const Temperature& value : camera.temperatures())
        json.push_back(
            {{"sensor", value.sensor}, {"celsius", floatJson(value.celsius)}, {"name", orNull(value.name)}});
    return json;
}

/// What only the camera knows.
Json askCamera(const Camera& camera, ExitCode& worst) {
    Json json;
    section(json, "firmware", worst, [&] {
        const FirmwareVersion version = camera.firmware();
        return Json{{"major", version.major}, {"minor", version.minor}};
    });
    json["source"] = Tool::toJson(camera.sources());
    section(json, "lens", worst, [&] {
        const StereoCameraParametersArray lenses = camera.lensModels();
        return Json{{"depth", Tool::toJson(lenses.depthIntrinsics.values)},
                    {"color", Tool::toJson(lenses.colorIntrinsics.values)}};
    });
    section(json, "extrinsics", worst, [&] { return Tool::toJson(camera.lensModels().extrinsics.values); });
    section(json, "storedSerialNumber", worst, [&] { return Json(camera.storedSerialNumber()); });
    section(json, "calibration", worst, [&] { return Tool::toJson(camera.readCalibration()); });
    section(json, "corrections", worst, [&] { return Tool::toJson(camera.corrections()); });
    section(json, "rangeMeters", worst, [&] { return floatJson(camera.rangeMetres()); });
    section(json, "temperatures", worst, [&] { return temperaturesJson(camera); });
    section(json, "accelerometerCalibration", worst,
            [&] { return Tool::toJson(camera.accelerometerCalibration()); });
    section(json, "overheatings", worst, [&] {
        const DiagnosticData counters = camera.diagnostics();
        return Json{{"soft", counters.softOverheatingCounter}, {"hard", counters.hardOverheatingCounter}};
    });
    return json;
}

ExitCode runInfo(const CameraOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        const Camera& camera = session.camera();
        Json json = describeCamera(camera);
        ExitCode worst = Failure::None;
        if (session.hasDepth())
            json.update(askCamera(camera, worst));
        Json page = json;
        page["camera"] = cameraJson(camera.info());
        session.finish(json, options.json ? std::string() : infoPage(page));
        return worst;
    });
}

} // namespace

Verb addInfoVerb(CLI::App& program) {
    auto options = std::make_shared<CameraOptions>();
    CLI::App* command =
        program
            .add_subcommand(infoVerb, "Tells what a camera is: nodes, modes, firmware, hardware, "
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
