#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <zentara/host/camera.h>
#include <zentara/host/export.h>
#include <zentara/host/frame.h>
#include <zentara/host/note.h>
#include <zentara/host/output_file.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Host {

/// Writes streams into one recording: the frames as they came, and what belongs to them, so that a recorded frame
/// becomes a cloud without its camera. The file takes its name with commit(); without one it is removed. Safe but for
/// construction and destruction: each stream may be written from a thread of its own.
class ZENTARA_HOST_API Recorder final {
public:
    /// \param streams 1 to 256, of one camera or several: streams of one `camera.path` belong together
    /// \throws Failure as OutputFile does; (Usage) for another number of streams
    Recorder(const std::string& path, const std::vector<StreamInfo>& streams,
             const OutputFile::Rules& rules = {});
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Adds a frame as the camera delivered it, with its time and its temperatures. \param stream index among the streams
    /// \throws Failure (Usage) when there is no such stream, the frame is in another mode or a corrected one, and after
    ///         commit() or discard(); (Failed) when the frame has more than 64 MiB, or it cannot be written: what is
    ///         whole stays whole, and the next frame may be tried
    void add(std::size_t stream, const Frame& frame);

    /// Ends the recording and gives the file its name; does nothing when that was done. One that could not be written on
    /// to, because the disk is full, ends with its last whole frame; a frame more goes where there is no room to say that
    /// it has ended.
    /// \throws Failure when even that cannot be written
    void commit();

    /// Removes what has been written, unless commit() was called.
    void discard() noexcept;

    /// How many frames of all streams stand in it.
    [[nodiscard]] std::uint64_t frames() const;
    [[nodiscard]] const std::string& path() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// How a camera of a recording plays.
struct PlayOptions {
    /// Of the pace at which it was recorded: 2 for twice as fast. Above 0. Who does not fetch fast enough loses frames,
    /// as with a camera.
    double speed = 1;
    /// Is told what its streams leave behind; the library's log unless set.
    Note note{};
};

/// A frame of a recording, and the index of its stream.
struct RecordedFrame {
    std::size_t stream = 0;
    Frame frame;
};

/// Reads what a Recorder wrote, unpaced: one frame after the other, or by number or time; camera() plays it. Nothing
/// that the file says is believed before its checksum was right, and no memory is taken for bytes that the file does not
/// have. Frames are as those of a camera, but for their number, which is their place among those recorded of their
/// stream, and outlive the recording. Separate.
///
/// A file that was cut short or damaged gives the whole frames before that place, and then the failure, which names the
/// byte.
class ZENTARA_HOST_API Recording final {
public:
    /// Reads the descriptions of the streams. \param path UTF-8
    /// \throws Failure (Failed) when the file cannot be read, is no recording, is of a version that is not known, or
    ///         damaged; (Permission) or (Busy) when that is why it cannot be read
    explicit Recording(const std::string& path);
    Recording(Recording&&) noexcept;
    Recording& operator=(Recording&&) noexcept;
    ~Recording();

    [[nodiscard]] const std::vector<StreamInfo>& streams() const& noexcept;
    const std::vector<StreamInfo>& streams() const&& = delete;

    /// The format's version. Files of version 1 have no lens models, extrinsics and corrections: their sources are
    /// Source::Unknown.
    [[nodiscard]] int version() const noexcept;

    /// The next frame of any stream, in the order in which they came. \return none at the end of a whole recording
    /// \throws Failure (Failed) where the file is cut short or damaged; again at every call
    [[nodiscard]] std::optional<RecordedFrame> next();

    /// The next frame of that stream; those of others before it are passed over, unread.
    /// \throws Failure as next(); (Usage) when there is no such stream
    [[nodiscard]] std::optional<Frame> next(std::size_t stream);

    /// next() begins again with the first frame.
    void rewind();

    /// How many whole frames a stream has. The first call reads the heads of all of them; so do the next two.
    [[nodiscard]] std::uint64_t count(std::size_t stream);

    /// A frame by its number, from 0; next() goes on where it was.
    /// \throws Failure (Usage) when there is none of that number, naming how many there are and what is damaged
    [[nodiscard]] Frame at(std::size_t stream, std::uint64_t number);

    /// The frame whose time is nearest, the earlier one of two; next() goes on where it was.
    /// \param micros of the device's clock \throws Failure (Usage) when the stream has no frame
    [[nodiscard]] Frame atTime(std::size_t stream, std::int64_t micros);

    /// The cameras whose streams it holds, in the order of their first streams. What was recorded of one `path` is one
    /// camera, which has the kinds and modes that were recorded; of two streams in one mode it has the first.
    [[nodiscard]] std::vector<CameraInfo> cameras() const;

    /// Those of these names, as Cameras::choose() does among what is plugged in; the first one for no names.
    [[nodiscard]] std::vector<CameraInfo> choose(const std::vector<std::string>& names) const;

    /// One of them, which plays: the same object as for a camera that is plugged in, with the same waits, queues and
    /// counts, whose streams deliver at the pace at which was recorded, and end. A stream begins with its first frame;
    /// all streams of the camera share a clock, which begins with the first of them, so one that is begun later hurries
    /// until it has caught up. A gap of more than a second, as when a camera was pulled out, is cut short. Each stream
    /// reads the file for itself; camera and streams outlive the recording. Who wants every frame, as fast as can be,
    /// takes next().
    /// \param name as in Cameras::open(); the first camera unless given
    /// \throws Failure (NoDevice) when there is no such camera, (Usage) when the name fits several, or for a speed that
    ///         is not above 0
    [[nodiscard]] Camera camera(const std::string& name = {}, const PlayOptions& options = {}) const;
    /// \param camera one of cameras()
    [[nodiscard]] Camera camera(const CameraInfo& camera, const PlayOptions& options = {}) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Host
