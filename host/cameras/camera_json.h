#pragma once

#include <zentara/host/stream_info.h>

#include "host/json.h"

namespace Zentara::Host {

/// Who a camera is: serial, name, path and controller; null where that is not known.
[[nodiscard]] inline Json cameraJson(const CameraInfo& camera) {
    return {{"serial", orNull(camera.serial)},
            {"name", orNull(camera.name)},
            {"path", orNull(camera.path)},
            {"controller", orNull(camera.controller)}};
}

} // namespace Zentara::Host
