#pragma once

#include <zentara/host/stream_info.h>

#include "host/cameras/camera_bus.h"
#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Who a camera is, the same in every verb: serial, name (the product's, else its first node's), path and controller;
/// null where that is not known.
[[nodiscard]] Json cameraJson(const Host::CameraInfo& camera);
[[nodiscard]] Json cameraJson(const Host::CameraEntry& camera);

/// Kind, name, path and ids of a node.
[[nodiscard]] Json nodeJson(const Host::NodeInfo& node);

/// Where what a node applies comes from: lens, extrinsics, corrections, accelerometer and serialNumber, each "camera",
/// "description" or "failure"; null where the node has none, or does not say.
[[nodiscard]] Json toJson(const Host::Sources& sources);

} // namespace Zentara::Tool
