#include <zentara/utils/clock.h>

#include "utils/platform/clock.h"

namespace Zentara::Utils {

int Clock::getTime(std::int64_t& microseconds) noexcept {
    microseconds = Platform::monotonicMicroseconds();
    return 0;
}

int Clock::getTime(Time& time) noexcept {
    time = toTime(Platform::monotonicMicroseconds());
    return 0;
}

} // namespace Zentara::Utils
