#include "tools/zentara/cameras/camera_json.h"

#include "host/cameras/camera_register.h"

namespace Zentara::Tool {

Json cameraJson(const Host::CameraInfo& camera) {
    return {{"serial", orNull(camera.serial)},
            {"name", orNull(camera.name)},
            {"path", orNull(camera.path)},
            {"controller", orNull(camera.controller)}};
}

Json cameraJson(const Host::CameraEntry& camera) { return cameraJson(Host::infoOf(camera)); }

Json nodeJson(const Host::NodeInfo& node) {
    return {{"kind", kindName(node.kind)},
            {"name", node.name},
            {"path", node.path},
            {"ids", {node.ids.vendorId, node.ids.productId, node.ids.revision, node.ids.interfaceNumber}}};
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
