#pragma once

#include <string>

#include <zentara/core/depth_node_interface.h>
#include <zentara/host/note.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Host {

/// Where what a node applies comes from.
[[nodiscard]] Sources sourcesOf(const Core::DepthNodeInterface& node);

/// Tells what is not the camera's own although it should be, and why; nothing when all is well.
void tellOrigin(const Sources& sources, const std::string& label, const Note& note);

} // namespace Zentara::Host
