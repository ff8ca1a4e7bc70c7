#include "host/streams/frame_gaps.h"

#include <algorithm>

namespace Zentara::Host {
namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;
constexpr std::int64_t longestGap = 3600 * microsPerSecond; // beyond it the clock has jumped
constexpr std::uint32_t fastest = 1'000'000;                // times a gap it stays within 64 bits

} // namespace

FrameGaps::FrameGaps(std::uint32_t framesPerSecond) noexcept
    : nominal(std::clamp(framesPerSecond, 1U, fastest)) {}

/// Frames come a period apart; a longer gap tells how many are missing in it.
std::uint64_t FrameGaps::count(std::int64_t micros) noexcept {
    const auto gap =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(micros) - static_cast<std::uint64_t>(last));
    const bool begins = isFirst || gap < 0 || gap > longestGap;
    isFirst = false;
    last = micros;
    if (begins)
        return 0;
    const std::int64_t periods = (gap * nominal + microsPerSecond / 2) / microsPerSecond;
    return static_cast<std::uint64_t>(std::max<std::int64_t>(periods - 1, 0));
}

} // namespace Zentara::Host
