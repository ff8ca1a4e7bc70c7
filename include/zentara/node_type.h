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

/// "depth", "color" or "audio"; "?" for anything else. Safe.
[[nodiscard]] constexpr const char* nodeTypeName(NodeType type) noexcept {
    switch (type) {
    case NodeType_DEPTH:
        return "depth";
    case NodeType_COLOR:
        return "color";
    case NodeType_AUDIO:
        return "audio";
    default:
        return "?";
    }
}

} // namespace Zentara
