#pragma once

#include <zentara/host/stream_info.h>

#include "host/cameras/stream_description.h"

namespace Zentara::Tool {

/// What a recording says of a node's stream, as far as its description tells it.
[[nodiscard]] Host::StreamInfo recordedStream(const Host::StreamDescription& stream);

/// The node and the mode that a recording stands for. A size that no frame format has is left to the node.
[[nodiscard]] Host::StreamDescription playedStream(const Host::StreamInfo& info);

} // namespace Zentara::Tool
