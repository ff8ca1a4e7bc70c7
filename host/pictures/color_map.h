#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zentara::Host {

using Rgb = std::array<std::uint8_t, 3>;

/// A range of depths in millimetres; 0 and 0 when there is none.
struct DepthRange {
    std::uint16_t nearest = 0;
    std::uint16_t farthest = 0;
};

/// The depths of a picture; zeros, which are no depths, do not count.
/// \param trim share of the values left out at either end, 0 to 0.5, so that single wild pixels do not count.
[[nodiscard]] DepthRange depthRange(const std::uint16_t* depth, std::size_t count, double trim);

/// The colour of a depth: red for the nearest, over yellow and green, to blue for the farthest; black for 0.
[[nodiscard]] Rgb depthColor(std::uint16_t depth, const DepthRange& range) noexcept;

/// A picture in those colours, three bytes a pixel.
[[nodiscard]] std::vector<std::uint8_t> colorize(const std::uint16_t* depth, std::size_t count,
                                                 const DepthRange& range);

} // namespace Zentara::Host
