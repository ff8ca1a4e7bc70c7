#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/frame_file.h>
#include <zentara/host/recording.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_statistics.h>

namespace Zentara::Host {

/// What a capture takes.
struct CaptureRules {
    std::uint64_t most = 0; ///< frames, of sound samples a channel; 0: all there are
    bool mayEnd = false;    ///< before that, as a recording does; the end is a failure otherwise
    bool corrects = false; ///< depth is corrected before it is looked at; what is written as it came stays so
    std::chrono::milliseconds longestSilence{5000}; ///< then it fails; not while the camera is away
};

/// Takes the frames of one stream until there are enough: counts and measures them, and puts them into files and a
/// recording. It never waits: who captures several streams takes from each in turn, and sleeps on `Stream::wake`.
///
///     Capture depth(camera.stream(Kind::Depth, {.started = false, .keepsAll = true}), {.most = 60});
///     depth.writeTo(std::make_unique<RawFile>("depth.raw"));
///     depth.start();
///     while (!depth.isOver())
///         depth.take(), sleep();
///     depth.commit();
///
/// When a file cannot be written to its end, its whole frames can still be committed. Separate; but while take() hangs,
/// another thread may commit() or discard() what has come, if nothing else follows.
class ZENTARA_HOST_API Capture {
public:
    /// Is shown each frame, corrected where that is wanted. What it throws leaves take().
    using Viewer = std::function<void(const Frame& seen)>;

    /// \param opened a stream that waits for start()
    Capture(Stream opened, const CaptureRules& wanted);
    virtual ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// Where the frames go; before start().
    void writeTo(std::unique_ptr<FrameFile> file);
    /// \param recording outlives this; null for none \param index of this stream in it
    void recordTo(Recorder* recording, std::size_t index);
    /// Is handed each frame that was taken.
    void showTo(Viewer shown);

    /// \throws Failure as Stream::start() does
    void start();

    /// Takes what has come, up to a hundred frames and some.
    /// \throws Failure as Stream::poll() does; (Failed) when the stream ends before all has come; (TimedOut) after too
    ///         long a silence; of a file, or the recording: isUnwritable() then
    void take();

    /// Whether nothing more is taken: there are enough, or the stream has ended and may.
    [[nodiscard]] bool isOver() const noexcept { return over; }
    /// Whether it failed because a file could not be written: what is whole in its files is worth keeping then.
    [[nodiscard]] bool isUnwritable() const noexcept { return unwritable; }

    /// Completes the files, but for the recording, which is others' as well. \throws Failure of the first that cannot be
    void commit();
    /// Removes them; nothing else may be called then.
    void discard() noexcept;

    /// The stream that is taken from; the capture keeps it.
    [[nodiscard]] Stream& stream() noexcept { return source; }
    [[nodiscard]] const StreamInfo& info() const noexcept { return source.info(); }
    [[nodiscard]] const StreamStatistics& statistics() const noexcept { return came; }
    /// The last frame, corrected where that is wanted.
    [[nodiscard]] const std::optional<Frame>& last() const noexcept { return latest; }
    /// How many frames, or blocks of sound, were fetched from the stream.
    [[nodiscard]] std::uint64_t units() const noexcept { return source.counts().fetched; }
    /// Frames, of sound samples a channel, of those that are wanted.
    [[nodiscard]] std::uint64_t taken() const noexcept;
    [[nodiscard]] std::uint64_t wanted() const noexcept { return rules.most; }

private:
    void put(const Frame& frame);

    const CaptureRules rules;
    Stream source;
    std::vector<std::unique_ptr<FrameFile>> files;
    Recorder* recorder = nullptr;
    std::size_t number = 0; ///< among the recorder's streams
    Viewer viewer;          ///< may be empty
    StreamStatistics came;
    std::optional<Frame> latest;
    std::int64_t heardAt = 0; ///< when it last was not silent, in microseconds of the monotonic clock
    bool over = false;
    bool unwritable = false;
};

} // namespace Zentara::Host
