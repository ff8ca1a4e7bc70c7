#pragma once

#include <cstdint>

#include <zentara/node_event.h>

namespace Zentara {

/// What an enumerator has to tell.
enum ExternalEventType : std::int32_t {
    ExternalEventType_NODE_ARRIVED = 0, ///< plugged in, or there when the enumerator began
    ExternalEventType_NODE_REMOVED = 1, ///< pulled out
    ExternalEventType_ERROR = 2, ///< the enumerator lost touch with the bus; `node` tells what is known
};

/// What an enumerator puts into its host's queue. A copyable value that owns its texts. Separate.
struct ExternalEvent {
    ExternalEventType type = ExternalEventType_NODE_ARRIVED;
    NodeEvent node;              ///< which one
    std::int64_t timeMicros = 0; ///< when it happened: microseconds on the clock of `Utils::Clock`
};

} // namespace Zentara
