#pragma once

#include <cstdint>

namespace Zentara::Utils::Platform {

/// Microseconds of the monotonic clock since a moment that is fixed for this boot.
[[nodiscard]] std::int64_t monotonicMicroseconds() noexcept;

} // namespace Zentara::Utils::Platform
