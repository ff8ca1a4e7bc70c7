#pragma once

namespace Zentara::Tool {

/// Catches Ctrl-C while it lives. The first one is noted, for long work to look at and end in order; a second one
/// ends the process. One at a time.
class InterruptWatch final {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    [[nodiscard]] bool interrupted() const noexcept;

private:
    void (*previous)(int);
};

} // namespace Zentara::Tool
