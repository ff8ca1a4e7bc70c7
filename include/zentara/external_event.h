#pragma once

#include <cstdint>

#include <zentara/node_event.h>

namespace Zentara {

enum ExternalEventType : std::int32_t {
    ExternalEventType_NODE_ARRIVED = 0,
    ExternalEventType_NODE_REMOVED = 1,
    ExternalEventType_ERROR = 2, ///< the enumerator lost touch with the bus; `node` tells what is known
};

/// What an enumerator puts into its host's queue.
struct ExternalEvent {
    ExternalEventType type = ExternalEventType_NODE_ARRIVED;
    NodeEvent node;
    std::int64_t timeMicros = 0; ///< when it happened, on the clock of `Utils::Clock`
};

} // namespace Zentara
