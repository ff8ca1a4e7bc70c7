#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/frame.h>
#include <zentara/host/point_cloud.h>
#include <zentara/host/stream.h>

namespace Zentara::Host {

/// What several streams of one camera delivered at one time. A plain value; its frames are shared handles. Separate.
struct FrameSet {
    std::optional<Frame> depth;
    std::optional<Frame> color;
    /// The blocks of sound, without a gap from set to set: those that begin before the end of this set's time, and were
    /// in none before. In the first set those that end before its time are left out.
    std::vector<Frame> audio;

    /// The set's span of time, on the host's monotonic clock in microseconds: from when its slower picture was taken,
    /// for one frame of that stream.
    std::int64_t beginMicros = 0;
    std::int64_t endMicros = 0;

    /// What is missing of what was asked for, and why: "color: nothing within 16.7 ms", "audio: it ends 4.2 ms early".
    std::vector<std::string> missing;

    [[nodiscard]] bool complete() const noexcept { return missing.empty(); }
};

/// Puts together what several streams deliver at one time: pictures of depth and colour, and the sound that belongs to
/// them.
///
/// There is a set for each frame of the slower picture stream (of depth, where both are as fast). The other picture is
/// the nearest one in time, and a set is complete when it was taken within half a frame time of the slower stream, and
/// the sound reaches to the set's end. No frame is in two sets; those of the faster stream between two sets are in none.
/// Where nothing fitting has come within the patience, the set is given as it is, and says what is missing; so it is
/// when the slower stream leaves out a frame.
///
/// All times are on the host's monotonic clock: a device that uses it, that is whose frames arrive within a second after
/// their time, is believed; the times of another one are shifted by the least delay that was seen.
///
/// Separate, but stop() is safe.
class ZENTARA_HOST_API FrameSets {
public:
    /// Which streams, and how long one waits for the other.
    struct Options {
        /// How long a set waits for what is missing, from when the first of its frames arrived.
        std::chrono::milliseconds patience{200};
    };

    /// \param streams of different kinds, a picture stream among them; those that wait are started, together
    /// \throws Failure (Usage) for two streams of one kind, or no picture; as Stream::start() does
    explicit FrameSets(std::vector<Stream> streams);
    FrameSets(std::vector<Stream> streams, Options options);
    FrameSets(FrameSets&& other) noexcept;
    FrameSets& operator=(FrameSets&& other) noexcept;
    FrameSets(const FrameSets&) = delete;
    FrameSets& operator=(const FrameSets&) = delete;

    /// Ends all streams at once, in 2 s at most, and tells what is left behind, as a stream's destructor does.
    ~FrameSets();

    /// The next set, in order. \param goOn may end the wait: Failure (Interrupted)
    /// \return nothing at the end: all streams have ended, or stop() was called
    /// \throws Failure (TimedOut) when none came within the limit; what any of the streams failed with, once what came
    ///         before has been given out
    [[nodiscard]] std::optional<FrameSet> next(std::chrono::milliseconds limit, const GoOn& goOn = {});

    /// Ends all streams, in 2 s at most, and wakes whoever waits in next(). \throws Failure of the first that could not be ended in order
    void stop();

    /// The stream of a kind, for what it says of itself. \throws Failure (Usage) when there is none
    [[nodiscard]] const Stream& stream(Kind kind) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// Keeps of the pictures that come by the last one of depth, and the one of colour that was taken nearest to it: a set
/// for a program that takes every frame itself. Times are those of the devices, which must have one clock. Separate.
class ZENTARA_HOST_API LastSet {
public:
    /// A frame of one camera's depth or colour; sound is no matter.
    void add(const Frame& frame);

    /// What there is now. It has no colour, and says why, when none was taken within half a frame time of the slower
    /// stream. Its span of time begins with the arrival of the depth.
    [[nodiscard]] FrameSet set() const;

private:
    [[nodiscard]] std::uint64_t distance(const Frame& picture) const;

    std::optional<Frame> depth;
    std::optional<Frame> color;  ///< the nearest one
    std::optional<Frame> newest; ///< of colour
};

/// The points of the set's depth, in the colours of its colour picture. They have none where that is missing, or lens
/// or pose do not allow it: PointCloud::uncolored() and the cloud's file say why.
/// \param options as Lens::pointsOf() takes them \throws Failure (Usage) without depth; as Lens::pointsOf() does
[[nodiscard]] ZENTARA_HOST_API PointCloud cloudOf(const FrameSet& set, const CloudOptions& options = {});

/// The set's colours in the grid of its depth: one for each depth pixel, row by row; none where there is no depth, and
/// where the colour camera does not see the point because it lies outside its picture or behind another one.
/// \throws Failure (Usage) when the set lacks depth or colour; (Failed) as Frame::lens(), Frame::rgb() and
///         PointCloud::colorFrom() do, and when the pose between the two cameras is not known
[[nodiscard]] ZENTARA_HOST_API std::vector<std::optional<Color>> colourOf(const FrameSet& set);

} // namespace Zentara::Host
