#include "tools/zentara/cameras/camera_json.h"

namespace Zentara::Tool {

Json cameraJson(const CameraEntry& camera) {
    const std::string& name =
        camera.product.empty() && !camera.nodes.empty() ? camera.nodes.front().name : camera.product;
    return {{"serial", orNull(camera.serialNumber())},
            {"name", orNull(name)},
            {"path", orNull(camera.path)},
            {"controller", orNull(camera.controller)}};
}

Json toJson(const Host::Sources& sources) {
    const auto word = [](Host::Source source) {
        const bool isTold = source != Host::Source::None && source != Host::Source::Unknown;
        return isTold ? Json(sourceName(source)) : Json();
    };
    return {{"lens", word(sources.lens)},
            {"extrinsics", word(sources.extrinsics)},
            {"corrections", word(sources.corrections)},
            {"accelerometer", word(sources.accelerometer)},
            {"serialNumber", word(sources.serialNumber)}};
}

} // namespace Zentara::Tool
