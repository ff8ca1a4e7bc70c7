#pragma once

#include <ostream>
#include <string>

#include <zentara/core/depth_node_interface.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Where what a node applies comes from: lens, extrinsics, corrections, accelerometer and serialNumber, each "camera",
/// "description" or "failure"; null where the node has none, or does not say.
[[nodiscard]] Json originJson(const Core::DepthNodeInterface& node);

/// Says what is not the camera's own although it should be, and why; nothing when all is well.
void tellOrigin(const Core::DepthNodeInterface& node, const std::string& label, std::ostream& err);

} // namespace Zentara::Tool
