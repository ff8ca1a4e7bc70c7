#include "host/recordings/play_clock.h"

#include <algorithm>

#include <zentara/utils/clock.h>

namespace Zentara::Host {
namespace {

/// Times are the file's and may be anything: differences wrap.
std::int64_t since(std::int64_t micros, std::int64_t zero) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(micros) - static_cast<std::uint64_t>(zero));
}

} // namespace

RecordedTimes::RecordedTimes(const std::vector<std::int64_t>& frameTimes, std::int64_t longestGapMicros)
    : lanes(frameTimes.size()), longestGap(longestGapMicros) {
    for (std::size_t stream = 0; stream < lanes.size(); ++stream)
        lanes[stream].frameTime = frameTimes[stream];
}

bool RecordedTimes::fits(std::int64_t micros, const std::optional<std::int64_t>& zero) const {
    if (!zero)
        return false;
    const std::int64_t due = since(micros, *zero);
    return due >= latest - longestGap && due <= latest + longestGap;
}

std::int64_t RecordedTimes::dueAt(std::size_t stream, std::int64_t micros) {
    Lane& lane = lanes[stream];
    if (!fits(micros, lane.zero)) {
        if (fits(micros, latestZero)) // it has the clock of the frame before
            lane.zero = latestZero;
        else
            lane.zero = since(micros, lane.zero ? std::max(latest, lane.last + lane.frameTime) : latest);
    }
    latestZero = lane.zero;
    lane.last = since(micros, *lane.zero);
    latest = std::max(latest, lane.last);
    return lane.last;
}

std::int64_t PlayClock::join() {
    Utils::Threading::AutoLock hold(lock);
    if (playing++ == 0)
        begun = zero = Utils::Clock::nowMicros();
    return begun;
}

void PlayClock::leave() {
    Utils::Threading::AutoLock hold(lock);
    --playing;
}

std::int64_t PlayClock::left(std::int64_t due, bool mayHold) {
    constexpr double most = 1e15; // some thirty years
    const auto scaled = static_cast<std::int64_t>(std::clamp(static_cast<double>(due) / speed, -most, most));
    Utils::Threading::AutoLock hold(lock);
    const std::int64_t early = zero + scaled - Utils::Clock::nowMicros();
    if (!mayHold || early >= -latenessMicros)
        return early;
    zero -= early;
    return 0;
}

} // namespace Zentara::Host
