#include "utils/platform/time_left.h"

#include "utils/platform/clock.h"
#include "utils/platform/event.h"

namespace Zentara::Utils::Platform {

TimeLeft::TimeLeft(unsigned long milliseconds) noexcept
    : whole(milliseconds), start(milliseconds < infiniteWait ? monotonicMicroseconds() : 0) {}

unsigned long TimeLeft::milliseconds() const noexcept {
    if (whole >= infiniteWait)
        return infiniteWait;
    // Whole milliseconds that have passed: what is left is so rounded up, and nobody wakes too soon.
    const std::int64_t elapsed = (monotonicMicroseconds() - start) / 1000;
    return elapsed < static_cast<std::int64_t>(whole) ? whole - static_cast<unsigned long>(elapsed) : 0;
}

} // namespace Zentara::Utils::Platform
