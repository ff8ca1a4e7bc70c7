#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/guids.h>

#include "host/cameras/calibration_origin.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/calibration_json.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/info_page.h"
#include "tools/zentara/cameras/node_names.h"
#include "tools/zentara/cameras/parameter_text.h"

namespace Zentara::Tool {
namespace {

using Tool::toJson; // those of calibrations

constexpr const char* infoVerb = "info";

/// Adds what one question to the camera brings. A camera that cannot answer it is told of in its place.
template<typename Ask>
void section(Json& json, const char* name, ExitCode& worst, Ask ask) {
    const auto fail = [&](const std::string& what, ExitCode code) {
        json[name] = {{"failure", what}};
        worst = worst == Failure::None ? code : worst;
    };
    try {
        json[name] = ask();
    } catch (const Plugin::NotSupportedPluginException& failure) {
        json[name] = {{"notSupported", failure.message()}};
    } catch (const Plugin::PluginException& failure) {
        fail(failure.message(), codeOf(failure.type()));
    } catch (const Failure& failure) {
        fail(failure.what(), failure.code());
    } catch (const std::exception& failure) {
        fail(failure.what(), Failure::Failed);
    }
}

Json toJson(const ModuleIdInternal& module) {
    return {{"vendorId", module.vendorId},
            {"productId", module.productId},
            {"revision", module.revision},
            {"variant", module.variant}};
}

Json toJson(const HardwareVersionInternal& hardware) {
    Json json{{"camera", toJson(hardware.camera)}, {"modules", Json::array()}, {"version", hardware.version}};
    for (const ModuleIdInternal& module : hardware.modules) {
        if (module != ModuleIdInternal())
            json["modules"].push_back(toJson(module));
    }
    return json;
}

Json toJson(const SensorValueArray& values) {
    Json json = Json::array();
    for (const SensorValue& value : values.values)
        json.push_back({{"sensor", value.sensorId}, {"celsius", floatJson(value.value)}});
    return json;
}

Json toJson(const std::vector<CameraIntrinsics>& lenses) {
    Json json = Json::array();
    for (const CameraIntrinsics& lens : lenses)
        json.push_back({{"width", lens.width},
                        {"height", lens.height},
                        {"fx", floatJson(lens.fx)},
                        {"fy", floatJson(lens.fy)},
                        {"cx", floatJson(lens.cx)},
                        {"cy", floatJson(lens.cy)},
                        {"k1", floatJson(lens.k1)},
                        {"k2", floatJson(lens.k2)},
                        {"k3", floatJson(lens.k3)},
                        {"p1", floatJson(lens.p1)},
                        {"p2", floatJson(lens.p2)}});
    return json;
}

/// Row by row, and millimetres.
Json toJson(const std::vector<ExtrinsicParametersInternal>& list) {
    Json json = Json::array();
    for (const ExtrinsicParametersInternal& one : list) {
        Json rotation = Json::array();
        for (const float value :
             {one.r11, one.r12, one.r13, one.r21, one.r22, one.r23, one.r31, one.r32, one.r33})
            rotation.push_back(floatJson(value));
        json.push_back({{"rotation", rotation},
                        {"translation", {floatJson(one.t1), floatJson(one.t2), floatJson(one.t3)}}});
    }
    return json;
}

Json toJson(const AccelerationInternal& acceleration) {
    return {
        {"x", floatJson(acceleration.x)}, {"y", floatJson(acceleration.y)}, {"z", floatJson(acceleration.z)}};
}

Json pluginJson(const GUID& guid) { return {{"name", orNull(guidName(guid))}, {"guid", guidText(guid)}}; }

/// What the descriptions say of a node.
Json describeNode(const NodeEvent& node, CameraStore& store) {
    store.select(node);
    const Core::DescriptorStoreRO& view = store.view();
    Json json{{"kind", nodeTypeName(node.nodeType)},
              {"name", node.name},
              {"path", node.path},
              {"ids", {node.vendorId, node.productId, node.revision, node.interfaceNumber}},
              {"node", pluginJson(view.getNodeImplGUID())},
              {"device", pluginJson(view.getDeviceImplGUID())}};
    json["modes"] = Json::array();
    json["modeSizes"] = Json::array();
    for (const StreamDescription& mode : modesOf(node, view)) {
        json["modes"].push_back(mode.modeName());
        json["modeSizes"].push_back(mode.modeSize());
    }
    return json;
}

Json correctionsOf(Core::DepthNodeInterface& depth) {
    TemperatureCompensation temperature = depth.getTemperatureCompensation();
    CyclicErrorCorrection cyclic = depth.getCyclicErrorCorrection();
    Json json = Json::array();
    for (const auto mode : {DepthNode::CameraMode_0, DepthNode::CameraMode_1}) {
        Json entry{{"cameraMode", static_cast<int>(mode)},
                   {"calibratedAt", toJson(depth.getTemperatureCalibration(mode))}};
        if (temperature.setCurrentMode(mode)) {
            Json parameters = Json::array();
            for (unsigned index = 0; index < temperature.getParameterCount(); ++index)
                parameters.push_back(floatJson(temperature.getParameter(index)));
            entry["temperatureCompensation"] = {{"algorithm", static_cast<int>(temperature.getAlgorithm())},
                                                {"parameters", parameters}};
        }
        if (cyclic.setCurrentMode(mode)) {
            Json parameters = Json::array();
            for (unsigned index = 0; index < cyclic.getParameterCount(); ++index)
                parameters.push_back(floatJson(cyclic.getParameter(index)));
            entry["cyclicErrorCorrection"] = {{"algorithm", static_cast<int>(cyclic.getAlgorithm())},
                                              {"parameters", parameters}};
        }
        json.push_back(entry);
    }
    return json;
}

/// What the descriptions say of the whole camera.
Json describeCamera(const CameraSession& session) {
    return {{"vendor", orNull(session.camera().vendor)},
            {"hardware", toJson(session.store().getHardwareVersion())},
            {"deviceFlags", session.store().getDeviceFlags()},
            {"deviceCapabilities", session.store().getDeviceCapabilities()}};
}

/// The same where there is a back-end for it; a camera without is no failure.
Json calibrationOf(CameraSession& session) {
    if (guidEquals(session.store().getParameterInterpreterGUID(), Core::Guids::NULL_IMPL))
        return {{"notSupported", "the description names no parameter back-end"}};
    CalibrationInternal calibration;
    session.parameters().readCalibration(&calibration);
    return toJson(calibration);
}

/// What only the camera knows.
Json askCamera(CameraSession& session, ExitCode& worst) {
    Core::DepthNodeInterface& depth = session.depth();
    Json json;
    section(json, "firmware", worst, [&] {
        int major = 0;
        int minor = 0;
        depth.getVersions(major, minor);
        return Json{{"major", major}, {"minor", minor}};
    });
    json["source"] = toJson(sourcesOf(depth));
    section(json, "lens", worst, [&] {
        const StereoCameraParametersArray lenses = depth.getImageRegistrationCalibration();
        return Json{{"depth", toJson(lenses.depthIntrinsics.values)},
                    {"color", toJson(lenses.colorIntrinsics.values)}};
    });
    section(json, "extrinsics", worst,
            [&] { return toJson(depth.getImageRegistrationCalibration().extrinsics.values); });
    section(json, "storedSerialNumber", worst, [&] { return Json(depth.getSerialNumber()); });
    section(json, "calibration", worst, [&] { return calibrationOf(session); });
    section(json, "corrections", worst, [&] { return correctionsOf(depth); });
    section(json, "rangeMeters", worst, [&] { return floatJson(depth.getRange()); });
    section(json, "temperatures", worst, [&] {
        Json readings = toJson(depth.readTemperatures());
        for (Json& reading : readings)
            reading["name"] = orNull(sensorName(session.store(), reading["sensor"].get<std::int32_t>()));
        return readings;
    });
    section(json, "accelerometerCalibration", worst,
            [&] { return toJson(depth.getAccelerometerCalibration()); });
    section(json, "overheatings", worst, [&] {
        const DiagnosticData counters = depth.getDiagnosticData();
        return Json{{"soft", counters.softOverheatingCounter}, {"hard", counters.hardOverheatingCounter}};
    });
    return json;
}

ExitCode runInfo(const CameraOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        Json json{{"nodes", Json::array()}};
        CameraStore store;
        for (const NodeEvent& node : session.camera().nodes)
            json["nodes"].push_back(describeNode(node, store));
        json.update(describeCamera(session));
        ExitCode worst = Failure::None;
        if (session.hasDepth())
            json.update(askCamera(session, worst));
        Json page = json;
        page["camera"] = cameraJson(session.camera());
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
