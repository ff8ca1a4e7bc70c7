#pragma once

#include <array>
#include <cstddef>
#include <functional>

namespace Zentara::Tool {

/// What has asked this process to end.
struct Interrupts {
    int count = 0;
    bool isTermination = false; ///< one of them was the system's request
};

/// Catches Ctrl-C, and the system's polite requests to end (signals; on Windows Ctrl-Break, the closing of the
/// console's window, log-off and shutdown), while it lives. The first one is noted, for long work to
/// look at and end in order; the supervisor ends the process at the second one, and if it cannot, the system does at the
/// third. One at a time.
class InterruptWatch final {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    [[nodiscard]] bool interrupted() const noexcept;

    /// What came while the present one lives; nothing when there is none. Safe.
    [[nodiscard]] static Interrupts sinceItBegan() noexcept;

private:
    using Handler = void (*)(int);
    static constexpr std::size_t mostSignals = 3;

    std::array<Handler, mostSignals> previous{};
};

/// How a verb that watches looks again: every so many milliseconds, for so many seconds, 0 for ever.
struct WatchTimes {
    unsigned interval = 500;
    double seconds = 0;
};

/// Does the work at once and then again and again, until it says false, the time is over or the user interrupts.
/// \param work is told the seconds since the beginning \return whether it was interrupted
bool watchEvery(const WatchTimes& times, const InterruptWatch& interrupt,
                const std::function<bool(double seconds)>& work);

} // namespace Zentara::Tool
