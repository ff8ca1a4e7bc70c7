#pragma once

#include <cstdint>

#include <zentara/core/guids.h>
#include <zentara/node_type.h>

namespace Zentara::Usb {

// The nodes of a camera that no description names. They carry numbers beyond those of USB interfaces in the place of one.

constexpr std::uint32_t firstGenericNumber = 256;

[[nodiscard]] constexpr std::uint32_t genericNumber(NodeType type) {
    return firstGenericNumber + static_cast<std::uint32_t>(type);
}

/// NONE for a number that is none of theirs.
[[nodiscard]] constexpr NodeType genericType(std::uint32_t number) {
    for (const NodeType type : {NodeType_DEPTH, NodeType_COLOR, NodeType_AUDIO}) {
        if (number == genericNumber(type))
            return type;
    }
    return NodeType_NONE;
}

/// Serves depth of any device that reports its modes.
constexpr GUID genericDepthNodeGuid = {
    0x6A0F2D58, 0x93E1, 0x4B7C, {0x8D, 0x24, 0xC1, 0x5E, 0x70, 0xB9, 0x3A, 0xF6}};

/// "depth", "color" or "audio".
[[nodiscard]] constexpr const char* typeName(NodeType type) {
    return type == NodeType_DEPTH ? "depth" : type == NodeType_COLOR ? "color" : "audio";
}

} // namespace Zentara::Usb
