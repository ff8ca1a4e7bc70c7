#include <zentara/host/stream_statistics.h>

#include <algorithm>

#include <zentara/host/stream_info.h>

namespace Zentara::Host {
namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;
constexpr std::int64_t longestGap = 3600 * microsPerSecond; // beyond it the clock has jumped

} // namespace

StreamStatistics::StreamStatistics(const StreamInfo& stream)
    : kind(stream.mode.kind), unit(stream.millimetresPerUnit),
      blockBytes(static_cast<std::uint64_t>(
          std::max(1, stream.mode.channels * ((stream.mode.bitsPerSample + 7) / 8)))) {}

void StreamStatistics::add(const Frame& frame) {
    if (kind == Kind::Depth) {
        for (const std::uint16_t value : frame.depth()) {
            if (value == 0) {
                ++zeros;
                continue;
            }
            least = std::min(least, value);
            greatest = std::max(greatest, value);
        }
        pixels += frame.depth().size();
    } else if (kind == Kind::Audio) {
        heard += frame.bytes().size() / blockBytes;
    }
    // Times may be anything, so their differences may wrap.
    const auto gap = static_cast<std::int64_t>(static_cast<std::uint64_t>(frame.deviceMicros()) -
                                               static_cast<std::uint64_t>(last));
    if (taken != 0 && !frame.isFirstAfterReturn() && gap >= 0 && gap <= longestGap) {
        total += gap;
        ++intervals;
    }
    last = frame.deviceMicros();
    missing += frame.droppedBefore();
    ++taken;
}

double StreamStatistics::seconds() const noexcept { return static_cast<double>(total) / microsPerSecond; }
double StreamStatistics::framesPerSecond() const noexcept {
    return total > 0 ? static_cast<double>(intervals) / seconds() : 0.0;
}
double StreamStatistics::withoutDepth() const noexcept {
    return pixels == 0 ? 0.0 : static_cast<double>(zeros) / static_cast<double>(pixels);
}

} // namespace Zentara::Host
