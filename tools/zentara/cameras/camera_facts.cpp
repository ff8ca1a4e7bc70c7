#include "tools/zentara/cameras/camera_facts.h"

#include "host/float_text.h"
#include "host/guid_text.h"
#include "tools/zentara/cameras/camera_json.h"

namespace Zentara::Tool {

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
    return {{"name", orNull(plugin.name)}, {"guid", guidText(plugin.guid)}};
}

Json numbersJson(const std::vector<float>& numbers) {
    Json json = Json::array();
    for (const float number : numbers)
        json.push_back(floatJson(number));
    return json;
}

} // namespace

Json toJson(const HardwareVersionInternal& hardware) {
    Json json{
        {"camera", moduleJson(hardware.camera)}, {"modules", Json::array()}, {"version", hardware.version}};
    for (const ModuleIdInternal& module : hardware.modules) {
        if (module != ModuleIdInternal())
            json["modules"].push_back(moduleJson(module));
    }
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

Json toJson(const NodeDescription& described) {
    Json json = nodeJson(described.node);
    json["node"] = pluginJson(described.nodePlugin);
    json["device"] = pluginJson(described.devicePlugin);
    json["modes"] = Json::array();
    json["modeSizes"] = Json::array();
    for (const Mode& mode : described.modes) {
        json["modes"].push_back(mode.name);
        json["modeSizes"].push_back(mode.text());
    }
    return json;
}

Json toJson(const Corrections& corrections) {
    Json json = Json::array();
    for (std::size_t mode = 0; mode < corrections.modes.size(); ++mode) {
        const ModeCorrections& one = corrections.modes[mode];
        Json entry{{"cameraMode", mode}, {"calibratedAt", readingsJson(one.calibratedAt)}};
        if (one.temperature != ModeCorrections::Temperature::None)
            entry["temperatureCompensation"] = {{"algorithm", one.temperatureAlgorithm},
                                                {"parameters", numbersJson(one.temperatureParameters)}};
        entry["cyclicErrorCorrection"] = {{"algorithm", one.cyclicAlgorithm},
                                          {"parameters", numbersJson(one.cyclicParameters)}};
        json.push_back(entry);
    }
    return json;
}

} // namespace Zentara::Tool
