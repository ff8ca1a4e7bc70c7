#pragma once

#include <cstdint>

namespace Zentara::Utils::Platform {

/// How much of a wait's time is left, on the monotonic clock.
class TimeLeft final {
public:
    /// From now on; infiniteWait of event.h is no limit.
    explicit TimeLeft(unsigned long milliseconds) noexcept;

    /// Rounded up, 0 when the time has passed; infiniteWait for no limit.
    [[nodiscard]] unsigned long milliseconds() const noexcept;

private:
    const unsigned long whole;
    const std::int64_t start; ///< in microseconds
};

} // namespace Zentara::Utils::Platform
