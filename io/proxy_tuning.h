#pragma once

#include <atomic>
#include <cstdint>

namespace Zentara::IO::Detail {

/// The time limits of proxified calls. Tests of the library's objects shorten them; nothing else changes them.
struct ProxyTuning {
    /// How long a caller waits from the start of its request.
    std::atomic<std::uint32_t> timeoutMilliseconds{2000};
    /// How long one device call may hold up everybody who waits behind it.
    std::atomic<std::uint32_t> stuckCallMilliseconds{10000};
    /// How often they look.
    std::atomic<std::uint32_t> sliceMilliseconds{50};
};

/// The process's one. Safe.
[[nodiscard]] ProxyTuning& proxyTuning() noexcept;

} // namespace Zentara::IO::Detail
