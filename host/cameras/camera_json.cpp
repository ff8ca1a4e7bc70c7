#include "host/cameras/camera_json.h"

#include "host/float_text.h"

namespace Zentara::Host {

Json cameraJson(const CameraInfo& camera) {
    return {{"serial", orNull(camera.serial)},
            {"name", orNull(camera.name)},
            {"path", orNull(camera.path)},
            {"controller", orNull(camera.controller)}};
}

Json lensJson(const CameraIntrinsics& lens) {
    return {{"width", lens.width},      {"height", lens.height},    {"fx", floatJson(lens.fx)},
            {"fy", floatJson(lens.fy)}, {"cx", floatJson(lens.cx)}, {"cy", floatJson(lens.cy)},
            {"k1", floatJson(lens.k1)}, {"k2", floatJson(lens.k2)}, {"k3", floatJson(lens.k3)},
            {"p1", floatJson(lens.p1)}, {"p2", floatJson(lens.p2)}};
}

Json vectorJson(const AccelerationInternal& acceleration) {
    return {
        {"x", floatJson(acceleration.x)}, {"y", floatJson(acceleration.y)}, {"z", floatJson(acceleration.z)}};
}

Json temperaturesJson(const std::vector<Temperature>& temperatures) {
    Json json = Json::array();
    for (const Temperature& value : temperatures)
        json.push_back(
            {{"sensor", value.sensor}, {"name", orNull(value.name)}, {"celsius", floatJson(value.celsius)}});
    return json;
}

} // namespace Zentara::Host
