#include "host/streams/warmth.h"

#include <algorithm>

#include <zentara/utils/clock.h>

#include "host/cameras/hand.h"
#include "host/streams/stream_source.h"

namespace Zentara::Host {

using Utils::Threading::AutoLock;

namespace {

constexpr std::int64_t longestAge = 5'000'000; // microseconds

} // namespace

void Warmth::ask(StreamSource& source) noexcept {
    SensorValueArray readings;
    try {
        readings = source.temperatures();
    } catch (...) {
    }
    AutoLock hold(lock);
    count = std::min(readings.size(), last.size());
    std::copy_n(readings.values.begin(), count, last.begin());
    isAsking = false;
    askedAt = Utils::Clock::nowMicros();
}

void Warmth::refresh(const Hand& hand, const std::shared_ptr<StreamSource>& source, const std::string& name) {
    {
        AutoLock hold(lock);
        if (Utils::Clock::nowMicros() - askedAt < longestAge)
            return;
        askedAt = Utils::Clock::nowMicros();
        if (isAsking) {
            count = 0;
            return;
        }
        isAsking = true;
    }
    try {
        hand.leave("read the temperatures of " + name,
                   [self = shared_from_this(), source] { self->ask(*source); });
    } catch (...) { // there is no memory for that: the next time
        AutoLock hold(lock);
        isAsking = false;
    }
}

std::size_t Warmth::copyTo(Readings& readings) const {
    AutoLock hold(lock);
    readings = last;
    return count;
}

} // namespace Zentara::Host
