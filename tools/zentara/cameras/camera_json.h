#pragma once

#include <zentara/host/camera_report.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Who a camera is, the same in every verb: serial, name (the product's, else its first node's), path and controller;
/// null where that is not known.
[[nodiscard]] inline Json cameraJson(const CameraInfo& camera) { return Json::parse(toJson(camera)); }

} // namespace Zentara::Tool
