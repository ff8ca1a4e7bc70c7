#pragma once

#include <array>
#include <cstddef>

namespace Zentara::Tool {

/// Catches Ctrl-C, and the system's polite requests to end, while it lives. The first one is noted, for long work to
/// look at and end in order; a second one ends the process. One at a time.
class InterruptWatch final {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    [[nodiscard]] bool interrupted() const noexcept;

private:
    using Handler = void (*)(int);
    static constexpr std::size_t mostSignals = 3;

    std::array<Handler, mostSignals> previous{};
};

} // namespace Zentara::Tool
