#pragma once

#include <cstdint>

#include <zentara/read_buffer_status.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread_annotations.h>

namespace Zentara::Simulated {

/// Gives a simulated stream its pace: says when the next unit (a frame, a block of samples) is due and holds its
/// reader back until then. Units are numbered from 0; number n falls due n periods after the start, on the
/// monotonic clock. A few are kept for a reader that is late; what is older is lost to it.
/// Safe.
class StreamClock final {
public:
    enum class Turn : std::uint8_t {
        Due,
        Cancelled,
        Late,    ///< nothing fell due within waitLimit, because the stream is paused
        Stopped, ///< no stream runs
    };

    /// No wait lasts longer than this, in milliseconds.
    static constexpr unsigned long waitLimit = 1000;

    /// \param unitsPerSecond 1 or more.
    /// \param unitsKept units that wait for a late reader, 1 or more.
    StreamClock(int unitsPerSecond, int unitsKept);

    /// Starts anew with unit 0.
    void start();
    /// Starts anew as if unit 0 had fallen due at that time, in microseconds of the monotonic clock.
    void startAt(std::int64_t micros);
    /// Ends the stream and every wait.
    void stop();
    /// Nothing falls due until resume(), which goes on where the stream stood. Both do nothing if already so.
    void pause();
    void resume();
    [[nodiscard]] bool running();

    /// Ends the waits of the moment; the stream goes on. False when nobody waits.
    bool cancel();

    /// Waits for the next unit. \param number, dueMicros set when the answer is Due.
    [[nodiscard]] Turn waitForNext(std::uint64_t& number, std::int64_t& dueMicros);

private:
    bool takeDue(std::int64_t now, std::uint64_t& number, std::int64_t& dueMicros) ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::int64_t dueAt(std::uint64_t unit) const ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::int64_t untilNext(std::int64_t now) const ZENTARA_REQUIRES(lock);
    void interrupt() ZENTARA_REQUIRES(lock);

    const std::int64_t rate;
    const std::uint64_t kept;
    Utils::Threading::Mutex lock;
    bool started ZENTARA_GUARDED_BY(lock) = false; ///< a stream runs, paused or not
    bool paused ZENTARA_GUARDED_BY(lock) = false;
    std::int64_t origin ZENTARA_GUARDED_BY(lock) = 0; ///< when unit 0 fell due, pauses added; microseconds
    std::int64_t pausedSince ZENTARA_GUARDED_BY(lock) = 0; ///< while it is paused
    std::uint64_t next ZENTARA_GUARDED_BY(lock) = 0;       ///< no unit before it is given out any more
    std::uint32_t waiting ZENTARA_GUARDED_BY(lock) = 0;    ///< threads that wait
    std::uint32_t interrupts ZENTARA_GUARDED_BY(lock) = 0; ///< a wait that began under another number is over
    Utils::Threading::Signal wake;
};

/// What a device's readBuffer answers when its turn was not Due.
[[nodiscard]] ReadBufferStatus statusOf(StreamClock::Turn turn) noexcept;

} // namespace Zentara::Simulated
