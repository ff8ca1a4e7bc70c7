#pragma once

#include <ctime>

namespace Zentara::Utils::Platform {

/// A moment of the monotonic clock; null for no limit.
class Deadline final {
public:
    explicit Deadline(unsigned long milliseconds) noexcept;

    [[nodiscard]] const timespec* get() const noexcept { return limited ? &moment : nullptr; }

private:
    bool limited;
    timespec moment{};
};

} // namespace Zentara::Utils::Platform
