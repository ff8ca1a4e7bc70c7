#pragma once

#include <cstdint>

namespace Zentara {

/// What a node delivers. Other numbers than those of `ConfigurationType`.
enum NodeType : std::int32_t {
    NodeType_NONE = 0,  ///< no node: none is described, or selected
    NodeType_DEPTH = 1, ///< pictures of distances
    NodeType_COLOR = 2, ///< pictures
    NodeType_AUDIO = 3, ///< sound
};

} // namespace Zentara
