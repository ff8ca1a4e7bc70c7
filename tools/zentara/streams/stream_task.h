#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <zentara/host/recording.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_statistics.h>

#include "tools/zentara/streams/cloud_maker.h"
#include "tools/zentara/streams/stream_file.h"

namespace Zentara::Tool {

/// One stream of a camera: takes its frames, counts them and puts them into files, until there are enough.
class StreamTask final {
public:
    struct Rules {
        std::uint64_t most = 0; ///< frames, of sound samples a channel; 0: all there are
        bool mayEnd = false;    ///< before that, as a recording does
        bool corrects = false;  ///< depth is corrected before it is looked at
    };

    /// \param opened a stream that waits
    StreamTask(Stream opened, const Rules& wanted);

    // Where the frames go; before start().
    void writeTo(std::unique_ptr<StreamFile> file) { files.push_back(std::move(file)); }
    void makeCloud(std::shared_ptr<CloudMaker> shared) { cloud = std::move(shared); }
    void recordTo(Recorder* recording, std::size_t number);

    /// \throws Failure when the device does not begin
    void start();
    /// Takes what has come. \throws Failure as the stream does; (TimedOut) after 5 s of silence; of a file
    void take();
    /// Whether nothing more is taken.
    [[nodiscard]] bool isOver() const noexcept { return over; }
    /// Whether it failed because a file could not be written: what is whole in its files is kept then.
    [[nodiscard]] bool isUnwritable() const noexcept { return unwritable; }

    /// Completes the files, or removes them. \throws Failure
    void commit();
    void discard() noexcept;

    [[nodiscard]] Stream& stream() noexcept { return source; }
    [[nodiscard]] const StreamInfo& info() const noexcept { return source.info(); }
    /// How many frames, or blocks of sound, were taken.
    [[nodiscard]] std::uint64_t units() const noexcept { return source.counts().fetched; }
    void print(std::ostream& out) const;
    void fill(Json& json) const;

private:
    void put(const Frame& frame);
    [[nodiscard]] Kind kind() const noexcept { return info().mode.kind; }
    /// Frames, or samples a channel, of those that are wanted.
    [[nodiscard]] std::uint64_t taken() const noexcept;

    const Rules rules;
    Stream source;
    std::vector<std::unique_ptr<StreamFile>> files;
    std::shared_ptr<CloudMaker> cloud; ///< of the camera; may be null
    Recorder* recorder = nullptr;      ///< may be null
    std::size_t index = 0;             ///< among the recorder's streams
    StreamStatistics came;
    std::optional<Frame> last; ///< as it is shown
    std::int64_t heardAt = 0;  ///< when it last was not silent
    bool over = false;
    bool unwritable = false;
};

} // namespace Zentara::Tool
