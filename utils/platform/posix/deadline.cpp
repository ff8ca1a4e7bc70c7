#include "utils/platform/posix/deadline.h"

#include "utils/platform/event.h"

namespace Zentara::Utils::Platform {

Deadline::Deadline(unsigned long milliseconds) noexcept : limited(milliseconds < infiniteWait) {
    if (!limited)
        return;
    clock_gettime(CLOCK_MONOTONIC, &moment);
    moment.tv_sec += static_cast<time_t>(milliseconds / 1000);
    moment.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
    if (moment.tv_nsec >= 1'000'000'000) {
        ++moment.tv_sec;
        moment.tv_nsec -= 1'000'000'000;
    }
}

} // namespace Zentara::Utils::Platform
