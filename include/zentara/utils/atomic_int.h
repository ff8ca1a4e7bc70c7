#pragma once

#include <zentara/export.h>

#include <atomic>
#include <cstdint>

namespace Zentara::Utils {

/// A 32-bit signed counter, changed only by atomic operations; it wraps around silently. Each operation is sequentially
/// consistent, so what a thread did before it counted down is seen by the one that finds 0. Safe.
class ZENTARA_API AtomicInt final {
public:
    explicit constexpr AtomicInt(int initial) noexcept : value(initial) {}
    AtomicInt(const AtomicInt&) = delete;
    AtomicInt& operator=(const AtomicInt&) = delete;

    [[nodiscard]] int get() const noexcept { return value.load(); }
    operator int() const noexcept { return get(); }

    /// Tells nothing: see incrementAndTest().
    void increment() noexcept { value.fetch_add(1); }

    /// Increments; true when the new value is 1, that is on the step from 0, and not at 0.
    bool incrementAndTest() noexcept { return value.fetch_add(1) == 0; }

    /// Decrements; true when the new value is 0.
    bool decrementAndTest() noexcept { return value.fetch_sub(1) == 1; }

    /// Increments unless the value is 0; tells whether it did.
    bool incrementIfNotZero() noexcept;

    /// Changes 1 to 0 and leaves every other value alone; tells whether it did.
    bool decrementIfOne() noexcept;

private:
    std::atomic<std::int32_t> value;
};

} // namespace Zentara::Utils
