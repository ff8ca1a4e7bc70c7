#include <iomanip>
#include <memory>
#include <sstream>

#include <zentara/core/descriptor_store_ro.h>

#include "tools/zentara/calibration_json.h"
#include "tools/zentara/camera_session.h"
#include "tools/zentara/guid_text.h"
#include "tools/zentara/stream_description.h"

namespace Zentara::Tool {
namespace {

using Tool::toJson; // those of calibrations

constexpr const char* verbName = "info";

/// Adds what one question to the camera brings. A camera that cannot answer it is told of in its place.
template<typename Ask>
void section(Json& json, const char* name, ExitCode& worst, Ask ask) {
    try {
        json[name] = ask();
    } catch (const Plugin::NotSupportedPluginException& failure) {
        json[name] = {{"notSupported", failure.message()}};
    } catch (const Plugin::PluginException& failure) {
        json[name] = {{"failure", failure.message()}};
        worst = exitCodeOf(failure.type());
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
        json.push_back({{"sensor", value.sensorId}, {"celsius", value.value}});
    return json;
}

Json toJson(const AccelerationInternal& acceleration) {
    return {{"x", acceleration.x}, {"y", acceleration.y}, {"z", acceleration.z}};
}

template<typename Modes>
Json modeNames(const Modes& modes) {
    Json names = Json::array();
    for (const auto& mode : modes)
        names.push_back(mode->getName());
    return names;
}

/// What the descriptions say of a node.
Json describeNode(const NodeEvent& node, CameraStore& store) {
    store.select(node);
    const Core::DescriptorStoreRO& view = store.view();
    Json json{{"kind", nodeTypeName(node.nodeType)},
              {"name", node.name},
              {"path", node.path},
              {"ids", {node.vendorId, node.productId, node.revision, node.interfaceNumber}},
              {"node", guidLabel(view.getNodeImplGUID())},
              {"device", guidLabel(view.getDeviceImplGUID())}};
    switch (node.nodeType) {
    case NodeType_DEPTH:
        json["modes"] = modeNames(view.getDepthConfigurations());
        break;
    case NodeType_COLOR:
        json["modes"] = modeNames(view.getColorConfigurations());
        break;
    default:
        json["modes"] = modeNames(view.getAudioConfigurations());
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
                parameters.push_back(temperature.getParameter(index));
            entry["temperatureCompensation"] = {{"algorithm", static_cast<int>(temperature.getAlgorithm())},
                                                {"parameters", parameters}};
        }
        if (cyclic.setCurrentMode(mode)) {
            Json parameters = Json::array();
            for (unsigned index = 0; index < cyclic.getParameterCount(); ++index)
                parameters.push_back(cyclic.getParameter(index));
            entry["cyclicErrorCorrection"] = {{"algorithm", static_cast<int>(cyclic.getAlgorithm())},
                                              {"parameters", parameters}};
        }
        json.push_back(entry);
    }
    return json;
}

Json askCamera(CameraSession& session, ExitCode& worst) {
    Core::DepthNodeInterface& depth = session.depth();
    Json json;
    section(json, "firmware", worst, [&] {
        int major = 0;
        int minor = 0;
        depth.getVersions(major, minor);
        return Json{{"major", major}, {"minor", minor}};
    });
    json["hardware"] = toJson(session.store().getHardwareVersion());
    json["deviceFlags"] = session.store().getDeviceFlags();
    json["deviceCapabilities"] = session.store().getDeviceCapabilities();
    section(json, "storedSerialNumber", worst, [&] { return Json(depth.getSerialNumber()); });
    section(json, "calibration", worst, [&] {
        CalibrationInternal calibration;
        session.parameters().readCalibration(&calibration);
        return toJson(calibration);
    });
    section(json, "corrections", worst, [&] { return correctionsOf(depth); });
    section(json, "rangeMeters", worst, [&] { return Json(depth.getRange()); });
    section(json, "temperatures", worst, [&] { return toJson(depth.readTemperatures()); });
    section(json, "accelerometerCalibration", worst,
            [&] { return toJson(depth.getAccelerometerCalibration()); });
    section(json, "overheatings", worst, [&] {
        const DiagnosticData counters = depth.getDiagnosticData();
        return Json{{"soft", counters.softOverheatingCounter}, {"hard", counters.hardOverheatingCounter}};
    });
    return json;
}

/// One line for each leaf: "firmware.major  2".
void printLeaves(std::ostream& out, const Json& json, const std::string& name) {
    if (json.is_structured() && !json.empty() && !(json.is_array() && !json.front().is_structured())) {
        for (const auto& [key, value] : json.items())
            printLeaves(out, value, name.empty() ? key : name + "." + key);
        return;
    }
    out << std::left << std::setw(55) << name << ' '
        << (json.is_string() ? json.get<std::string>() : json.dump()) << '\n';
}

ExitCode runInfo(const CameraOptions& options, Console& console) {
    CameraSession session(verbName, options, console);
    Json json{{"nodes", Json::array()}};
    CameraStore store(console.err);
    for (const NodeEvent& node : session.camera().nodes)
        json["nodes"].push_back(describeNode(node, store));
    ExitCode worst = ExitCode_DONE;
    json.update(askCamera(session, worst));
    std::ostringstream text;
    printLeaves(text, session.identity(), "");
    printLeaves(text, json, "");
    session.finish(json, text.str());
    return worst;
}

} // namespace

Verb addInfoVerb(CLI::App& program) {
    auto options = std::make_shared<CameraOptions>();
    CLI::App* command =
        program
            .add_subcommand(verbName, "Tells what a camera is: nodes, modes, firmware, hardware, "
                                      "calibration, temperatures")
            ->group("Verbs");
    addCameraOptions(*command, *options);
    return {command, [options](Console& console) { return runInfo(*options, console); }};
}

} // namespace Zentara::Tool
