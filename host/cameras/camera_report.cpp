#include <zentara/host/camera_report.h>

#include <algorithm>

#include "host/cameras/calibration_json.h"
#include "host/cameras/camera_json.h"
#include "host/float_text.h"
#include "host/guid_text.h"
#include "host/json_file.h"

namespace Zentara::Host {

namespace {

Json moduleJson(const ModuleIdInternal& module) {
    return {{"vendorId", module.vendorId},
            {"productId", module.productId},
            {"revision", module.revision},
            {"variant", module.variant}};
}

Json readingsJson(const SensorValueArray& values) {
    Json json = Json::array();
    for (const SensorValue& value : values.values)
        json.push_back({{"sensor", value.sensorId}, {"celsius", floatJson(value.value)}});
    return json;
}

Json pluginJson(const PluginName& plugin) {
    return {{"name", orNull(plugin.name)}, {"guid", plugin.guidText()}};
}

Json numbersJson(const std::vector<float>& numbers) {
    Json json = Json::array();
    for (const float number : numbers)
        json.push_back(floatJson(number));
    return json;
}

Json hardwareJson(const HardwareVersionInternal& hardware) {
    Json json{
        {"camera", moduleJson(hardware.camera)}, {"modules", Json::array()}, {"version", hardware.version}};
    for (const ModuleIdInternal& module : hardware.modules) {
        if (module != ModuleIdInternal())
            json["modules"].push_back(moduleJson(module));
    }
    return json;
}

Json lensesJson(const std::vector<CameraIntrinsics>& lenses) {
    Json json = Json::array();
    for (const CameraIntrinsics& lens : lenses)
        json.push_back(lensJson(lens));
    return json;
}

Json extrinsicsJson(const std::vector<ExtrinsicParametersInternal>& list) {
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

Json nodeJson(const NodeInfo& node) {
    return {{"kind", kindName(node.kind)},
            {"name", node.name},
            {"path", node.path},
            {"ids", {node.ids.vendorId, node.ids.productId, node.ids.revision, node.ids.interfaceNumber}}};
}

/// With the modes that it streams in.
Json nodeJson(const NodeInfo& node, const std::vector<Mode>& modes) {
    Json json = nodeJson(node);
    json["modes"] = Json::array();
    json["modeSizes"] = Json::array();
    for (const Mode& mode : modes) {
        json["modes"].push_back(mode.name);
        json["modeSizes"].push_back(mode.text());
    }
    return json;
}

Json describedJson(const NodeDescription& described) {
    Json json = nodeJson(described.node, described.modes);
    json["node"] = pluginJson(described.nodePlugin);
    json["device"] = pluginJson(described.devicePlugin);
    return json;
}

Json correctionsJson(const Corrections& corrections) {
    Json json = Json::array();
    for (std::size_t mode = 0; mode < corrections.modes.size(); ++mode) {
        const ModeCorrections& one = corrections.modes[mode];
        Json entry{{"cameraMode", mode},
                   {"calibratedAt", readingsJson(one.calibratedAt)},
                   {"phaseDelay", mode == 0 ? corrections.phaseDelay : corrections.phaseDelay2}};
        if (one.temperature != ModeCorrections::Temperature::None)
            entry["temperatureCompensation"] = {{"algorithm", one.temperatureAlgorithm},
                                                {"parameters", numbersJson(one.temperatureParameters)}};
        entry["cyclicErrorCorrection"] = {{"algorithm", one.cyclicAlgorithm},
                                          {"parameters", numbersJson(one.cyclicParameters)}};
        json.push_back(entry);
    }
    return json;
}

Json sourcesJson(const Sources& sources) {
    const auto word = [](Source source) {
        const bool isTold = source != Source::None && source != Source::Unknown;
        return isTold ? Json(sourceName(source)) : Json();
    };
    return {{"lens", word(sources.lens)},
            {"extrinsics", word(sources.extrinsics)},
            {"corrections", word(sources.corrections)},
            {"accelerometer", word(sources.accelerometer)},
            {"serialNumber", word(sources.serialNumber)}};
}

/// That a camera has no such thing.
Json lackJson(const Unsupported& lack) {
    const std::string cause = lack.cause(); // what the plug-in says stands behind the kind
    const std::string kind = "not supported: ";
    return {{"notSupported", cause.rfind(kind, 0) == 0 ? cause.substr(kind.size()) : cause}};
}

/// The questions to one camera, and what they bring.
class Questions {
public:
    explicit Questions(const Camera& asked) : camera(asked) {}

    /// What its description says of the whole camera. A recording has none, but modes.
    void describe() {
        json["vendor"] = orNull(camera.info().vendor);
        json["nodes"] = Json::array();
        try {
            const CameraDescription described = camera.description();
            for (const NodeDescription& node : described.nodes)
                json["nodes"].push_back(describedJson(node));
            json.update({{"hardware", hardwareJson(described.hardware)},
                         {"deviceFlags", described.deviceFlags},
                         {"deviceCapabilities", described.deviceCapabilities}});
        } catch (const Unsupported& lack) {
            for (const NodeInfo& node : camera.info().nodes)
                json["nodes"].push_back(nodeJson(node, camera.modes(node.kind)));
            json["hardware"] = lackJson(lack);
        }
    }

    /// What only the camera knows.
    void ask() {
        section("firmware", [this] {
            const FirmwareVersion version = camera.firmware();
            return Json{{"major", version.major}, {"minor", version.minor}};
        });
        json["source"] = sourcesJson(camera.sources());
        section("depth", [this] {
            const StreamInfo info = camera.streamInfo(Kind::Depth);
            return Json{{"millimetresPerUnit", floatJson(info.millimetresPerUnit)},
                        {"along", depthAlongName(info.depthAlong)}};
        });
        section("lens", [this] {
            const StereoCameraParametersArray lenses = camera.lensModels();
            return Json{{"depth", lensesJson(lenses.depthIntrinsics.values)},
                        {"color", lensesJson(lenses.colorIntrinsics.values)}};
        });
        section("extrinsics", [this] { return extrinsicsJson(camera.lensModels().extrinsics.values); });
        section("storedSerialNumber", [this] { return Json(camera.storedSerialNumber()); });
        section("calibration", [this] { return calibrationJson(camera.readCalibration()); });
        section("corrections", [this] { return correctionsJson(camera.corrections()); });
        section("rangeMeters", [this] { return floatJson(camera.rangeMetres()); });
        section("temperatures", [this] { return temperaturesJson(camera.temperatures()); });
        section("accelerometerCalibration", [this] { return vectorJson(camera.accelerometerCalibration()); });
        section("overheatings", [this] {
            const DiagnosticData counters = camera.diagnostics();
            return Json{{"soft", counters.softOverheatingCounter}, {"hard", counters.hardOverheatingCounter}};
        });
    }

    Json json;
    Failure::Code worst = Failure::None;

private:
    /// Adds what one question to the camera brings. A camera that cannot answer it is told of in its place.
    template<typename Ask>
    void section(const char* name, Ask ask) {
        try {
            json[name] = ask();
        } catch (const Unsupported& lack) {
            json[name] = lackJson(lack);
        } catch (const Failure& failure) {
            json[name] = {{"failure", failure.cause().empty() ? failure.message() : failure.cause()}};
            worst = worst == Failure::None ? failure.code() : worst;
        }
    }

    const Camera& camera;
};

} // namespace

std::string toJson(const CameraInfo& camera) { return printed(cameraJson(camera)); }

std::string toJson(const NodeInfo& node) { return printed(nodeJson(node)); }

std::string toJson(const Sources& sources) { return printed(sourcesJson(sources)); }

CameraReport reportOf(const Camera& camera) {
    Questions questions(camera);
    questions.describe();
    const auto& kinds = camera.info().kinds;
    if (std::find(kinds.begin(), kinds.end(), Kind::Depth) != kinds.end())
        questions.ask();
    return {printed(questions.json), questions.worst};
}

} // namespace Zentara::Host
