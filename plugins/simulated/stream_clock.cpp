#include "plugins/simulated/stream_clock.h"

#include <algorithm>

#include <zentara/utils/clock.h>

namespace Zentara::Simulated {
namespace {

using Utils::Threading::AutoLock;

constexpr std::int64_t microsPerSecond = 1'000'000;

} // namespace

StreamClock::StreamClock(int unitsPerSecond, int unitsKept)
    : rate(unitsPerSecond), kept(static_cast<std::uint64_t>(unitsKept)) {}

void StreamClock::start() { startAt(Utils::Clock::nowMicros()); }

void StreamClock::startAt(std::int64_t micros) {
    AutoLock hold(lock);
    interrupt();
    started = true;
    paused = false;
    origin = micros;
    next = 0;
}

void StreamClock::stop() {
    AutoLock hold(lock);
    started = false;
    interrupt();
}

void StreamClock::pause() {
    AutoLock hold(lock);
    if (!started || paused)
        return;
    paused = true;
    pausedSince = Utils::Clock::nowMicros();
}

void StreamClock::resume() {
    AutoLock hold(lock);
    if (!started || !paused)
        return;
    paused = false;
    // As if the pause had not been: the next unit falls due as long after it as it was to.
    origin += Utils::Clock::nowMicros() - pausedSince;
    wake.set();
}

bool StreamClock::running() {
    AutoLock hold(lock);
    return started;
}

bool StreamClock::cancel() {
    AutoLock hold(lock);
    if (waiting == 0)
        return false;
    interrupt();
    return true;
}

StreamClock::Turn StreamClock::waitForNext(std::uint64_t& number, std::int64_t& dueMicros) {
    const std::int64_t deadline = Utils::Clock::nowMicros() + std::int64_t{waitLimit} * 1000;
    bool waited = false;
    std::uint32_t before = 0;
    for (;;) {
        std::int64_t left = 0;
        {
            AutoLock hold(lock);
            waiting -= waited;
            before = waited ? before : interrupts;
            if (waited && waiting != 0 && before != interrupts)
                wake.set(); // one set() wakes one waiter: pass it on
            if (!started)
                return Turn::Stopped;
            if (before != interrupts)
                return Turn::Cancelled;
            const std::int64_t now = Utils::Clock::nowMicros();
            if (takeDue(now, number, dueMicros))
                return Turn::Due;
            if (now >= deadline)
                return Turn::Late;
            left = std::min(deadline - now, untilNext(now));
            ++waiting;
        }
        waited = true;
        wake.timedWait(static_cast<unsigned long>(std::max<std::int64_t>(1, (left + 999) / 1000)));
    }
}

bool StreamClock::takeDue(std::int64_t now, std::uint64_t& number, std::int64_t& dueMicros) {
    if (paused || now < dueAt(next))
        return false;
    // A reader that is late finds the last few; those before them are skipped, and keep their numbers.
    const auto newest = static_cast<std::uint64_t>((now - origin) * rate / microsPerSecond);
    if (newest >= kept)
        next = std::max(next, newest - kept + 1);
    number = next++;
    dueMicros = dueAt(number);
    return true;
}

std::int64_t StreamClock::dueAt(std::uint64_t unit) const {
    // Rounded up, so that a unit is never counted as due before its time.
    return origin + (static_cast<std::int64_t>(unit) * microsPerSecond + rate - 1) / rate;
}

std::int64_t StreamClock::untilNext(std::int64_t now) const {
    return paused ? std::int64_t{waitLimit} * 1000 : dueAt(next) - now;
}

void StreamClock::interrupt() {
    ++interrupts;
    wake.set();
}

ReadBufferStatus statusOf(StreamClock::Turn turn) noexcept {
    switch (turn) {
    case StreamClock::Turn::Due:
        return ReadBufferStatus_OK;
    case StreamClock::Turn::Cancelled:
        return ReadBufferStatus_FAILED;
    case StreamClock::Turn::Late:
        return ReadBufferStatus_TIMEOUT;
    case StreamClock::Turn::Stopped:
        return ReadBufferStatus_NOT_STREAMING;
    }
    return ReadBufferStatus_FAILED;
}

} // namespace Zentara::Simulated
