#pragma once

#include <atomic>
#include <cstdint>

namespace Zentara::Utils::Threading {

/// A Mutex that can be tried, with the names that the standard's guards ask for. Unlike the standard's own mutexes it
/// takes nothing from the system: mingw's take memory at their first use that nobody gives back.
class TryMutex final {
public:
    void lock() noexcept;
    [[nodiscard]] bool try_lock() noexcept;
    void unlock() noexcept;

private:
    std::atomic<std::uint64_t> word{0};
};

} // namespace Zentara::Utils::Threading
