#pragma once

#include <cstdint>

namespace Zentara {

/// What a node delivers.
enum NodeType : std::int32_t {
    NodeType_NONE = 0,
    NodeType_DEPTH = 1,
    NodeType_COLOR = 2,
    NodeType_AUDIO = 3,
};

} // namespace Zentara
