#pragma once

#include <zentara/export.h>

#include <cstdint>

namespace Zentara::Utils {

/// The monotonic clock: microseconds since a fixed but unspecified moment of this boot, the same for all processes. It
/// never goes back. Safe.
class ZENTARA_API Clock final {
public:
    /// A time in two fields. A copyable value.
    struct Time {
        std::int64_t seconds = 0;      ///< whole ones
        std::int64_t microseconds = 0; ///< 0 to 999999

        bool operator==(const Time&) const = default;
    };

    Clock() = delete;

    /// The time now, in microseconds.
    /// \return always 0.
    static int getTime(std::int64_t& microseconds) noexcept;
    /// \return always 0.
    static int getTime(Time& time) noexcept;
    /// The same as a value.
    [[nodiscard]] static std::int64_t nowMicros() noexcept {
        std::int64_t microseconds = 0;
        getTime(microseconds);
        return microseconds;
    }

    /// Splits microseconds, 0 or more, into seconds and the rest.
    [[nodiscard]] static constexpr Time toTime(std::int64_t microseconds) noexcept {
        return {microseconds / 1'000'000, microseconds % 1'000'000};
    }
};

} // namespace Zentara::Utils
