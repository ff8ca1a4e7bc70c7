#pragma once

#include <algorithm>
#include <chrono>

namespace Zentara::Host {

/// A caller's limit as one that can be added to any time: none is less than 0, and what is longer than a year is a year.
[[nodiscard]] inline std::chrono::milliseconds boundedLimit(std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 365);
    return std::clamp(limit, std::chrono::milliseconds(0), longest);
}

} // namespace Zentara::Host
