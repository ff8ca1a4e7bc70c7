#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace Zentara::ROM {

/// What the ten bytes in front of a block say.
struct BlockHeaderFields {
    std::uint32_t allocatedSize;
    std::uint32_t nextBlockOffset;
};

/// None for bytes that are no block header; never for lack of memory, of which it needs none.
std::optional<BlockHeaderFields> readBlockHeader(std::span<const std::uint8_t> bytes) noexcept;

} // namespace Zentara::ROM
