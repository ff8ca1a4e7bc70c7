#pragma once

#include <memory>

#include <zentara/host/note.h>
#include <zentara/node_event.h>

#include "host/cameras/mode_choice.h"
#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Tool {

/// The stream of a node in the mode that is chosen. \throws Failure
[[nodiscard]] std::unique_ptr<StreamSource> openNodeStream(const NodeEvent& node, const ModeChoice& choice,
                                                           const Host::Note& note);

} // namespace Zentara::Tool
