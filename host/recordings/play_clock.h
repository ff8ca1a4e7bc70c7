#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <zentara/utils/mutex.h>

namespace Zentara::Host {

/// When the frames of one camera are due while its recording plays, in microseconds from its first frame on. Streams may
/// have clocks of their own, and a camera that was away may have begun its clock anew: a time that lies further than the
/// longest gap from what was due before is taken for one frame time after the stream's last frame, so that no gap is
/// longer; what is recorded as one moment plays as one moment. Every reader of a file gets the same times. Separate.
class RecordedTimes final {
public:
    /// All in microseconds. \param frameTimes of each stream of the file; 0 of sound
    RecordedTimes(const std::vector<std::int64_t>& frameTimes, std::int64_t longestGapMicros);

    /// \param micros of the device's clock, any number. To be asked about all frames of the camera, in the file's order
    [[nodiscard]] std::int64_t dueAt(std::size_t stream, std::int64_t micros);

private:
    struct Lane {
        std::int64_t frameTime = 0;
        std::optional<std::int64_t> zero; ///< what its clock shows at 0; none before its first frame
        std::int64_t last = 0;            ///< when its last frame was due
    };
    [[nodiscard]] bool fits(std::int64_t micros, const std::optional<std::int64_t>& zero) const;

    std::vector<Lane> lanes;
    std::optional<std::int64_t> latestZero; ///< of the stream that had the frame before
    std::int64_t latest = 0;                ///< nothing was due later
    const std::int64_t longestGap;
};

/// The clock that the streams of a playing camera share. It begins with the first of them, and anew when one begins
/// while no other one plays. Safe.
class PlayClock final {
public:
    /// \param times the pace at which was recorded; above 0
    explicit PlayClock(double times) : speed(times) {}

    /// A stream begins, or has ended.
    /// \return when the clock began, on the host's clock
    std::int64_t join();
    void leave();

    /// How many microseconds it is until then; 0 or less when it is due. \param due from RecordedTimes
    /// \param mayHold whether the caller has been in time: if it is more than a second late now, the process was held up
    /// and not the caller, and the clock is set back for all streams
    [[nodiscard]] std::int64_t left(std::int64_t due, bool mayHold);

    static constexpr std::int64_t latenessMicros = 1'000'000;

private:
    const double speed;
    Utils::Threading::Mutex lock;
    unsigned playing ZENTARA_GUARDED_BY(lock) = 0;
    std::int64_t begun ZENTARA_GUARDED_BY(lock) = 0; ///< on the host's clock
    std::int64_t
        zero ZENTARA_GUARDED_BY(lock) = 0; ///< what is due at 0 was due then: `begun`, set back by hold-ups
};

} // namespace Zentara::Host
