#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Zentara::Utils {

/// Room for what lives a moment: taking and giving back cost next to nothing. Most threads need one place at a time, and
/// each has one of its own, so that it is nearly always free; who finds it taken, by himself or by a thread that shares
/// it, goes to the heap. For static storage, without a destructor: what lies there may be given back by another thread
/// than took it, and after the library's other statics. Safe.
template<std::size_t bytes>
class Places final {
public:
    constexpr Places() noexcept = default;
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;

    /// So many bytes, aligned for everything; null when the place is taken.
    [[nodiscard]] void* take() noexcept {
        // Threads are told apart by their stacks, which lie a megabyte apart or more.
        const char here = 0;
        const std::uint64_t stack = reinterpret_cast<std::uintptr_t>(&here) >> 20;
        Place& place = places[(stack * 0x9E3779B97F4A7C15U) >> 60];
        return place.taken.exchange(true, std::memory_order_acquire) ? nullptr : place.room;
    }

    /// False for memory from elsewhere, which is left alone.
    bool giveBack(const void* room) noexcept {
        const auto offset =
            reinterpret_cast<std::uintptr_t>(room) - reinterpret_cast<std::uintptr_t>(&places);
        if (offset >= sizeof places)
            return false;
        places[offset / sizeof(Place)].taken.store(false, std::memory_order_release);
        return true;
    }

private:
    struct Place {
        std::atomic<bool> taken{false};
        alignas(std::max_align_t) std::byte room[bytes]{};
    };
    std::array<Place, 16> places;
};

} // namespace Zentara::Utils
