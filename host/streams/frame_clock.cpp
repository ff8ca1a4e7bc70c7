#include <zentara/host/frame_clock.h>

#include <algorithm>

#include <zentara/host/frame.h>

#include "host/streams/frame_draft.h"

namespace Zentara::Host {

namespace {

constexpr std::int64_t believedDelay = 1'000'000; ///< from a frame's time to its arrival, on one clock

} // namespace

std::int64_t FrameClock::timeOf(const Frame& frame) noexcept {
    if (const std::int64_t known = FrameDraft::dataOf(frame).takenMicros; known != 0)
        return known;
    const std::int64_t delay = frame.hostMicros() - frame.deviceMicros();
    if (isFirst || frame.isFirstAfterReturn()) {
        isForeign = delay < 0 || delay > believedDelay;
        leastDelay = delay;
        isFirst = false;
    }
    leastDelay = std::min(leastDelay, delay);
    return frame.deviceMicros() + (isForeign ? leastDelay : 0);
}

} // namespace Zentara::Host
