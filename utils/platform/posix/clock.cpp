#include "utils/platform/clock.h"

#include <ctime>

namespace Zentara::Utils::Platform {

std::int64_t monotonicMicroseconds() noexcept {
    // Of a valid clock and a place of our own the call cannot fail.
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

} // namespace Zentara::Utils::Platform
