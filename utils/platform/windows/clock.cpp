#include "utils/platform/clock.h"

#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

/// Microseconds per count of the performance counter; 0 where there is none.
double counterFactor() noexcept {
    LARGE_INTEGER frequency;
    return QueryPerformanceFrequency(&frequency) && frequency.QuadPart > 0
               ? 1'000'000.0 / static_cast<double>(frequency.QuadPart)
               : 0;
}

constexpr double tickFactor = 1000.0; // microseconds of a tick

} // namespace

std::int64_t monotonicMicroseconds() noexcept {
    // As a floating-point product: the counter times a million would pass 64 bits within days on fast counters.
    static const double factor = counterFactor();
    LARGE_INTEGER counter;
    if (factor > 0 && QueryPerformanceCounter(&counter))
        return static_cast<std::int64_t>(static_cast<double>(counter.QuadPart) * factor);
    return static_cast<std::int64_t>(static_cast<double>(GetTickCount64()) * tickFactor);
}

} // namespace Zentara::Utils::Platform
