#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/frame.h>
#include <zentara/host/output_file.h>
#include <zentara/host/stream_info.h>

#include "host/cameras/stream_description.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/frame_counter.h"
#include "tools/zentara/streams/stream_sink.h"

namespace Zentara::Tool {

/// Where the frames of a depth stream go; empty for what is not wanted.
struct DepthFiles {
    std::string png;      ///< the last one, in colours
    std::string raw;      ///< all of them, as they came
    std::string ply;      ///< the last one's points
    std::string cloudPng; ///< and how they look
};

/// Takes the frames of a depth stream: counts and measures them, makes pictures and points of the last one and writes
/// all to a file if asked. A frame is a plane of 16-bit depth in millimetres, then whatever the camera adds.
class DepthRecorder final : public StreamSink {
public:
    /// \param about what belongs to the frames, for the points \param count frames to take
    /// \throws Failure when the mode has no size, there is to be a cloud and no lens model, or a file cannot be opened
    DepthRecorder(const StreamDescription& stream, const StreamInfo& about, std::uint64_t count,
                  const DepthFiles& files);

    bool take(const std::uint8_t* data, std::size_t size, std::int64_t micros) override;
    void resume() override { counter.resume(); }
    [[nodiscard]] bool full() const override { return counter.full(); }
    void commit() override;
    void discard() override;
    void print(std::ostream& out) const override;
    void fill(Json& stream) const override;

private:
    /// Of depths in millimetres; 0 and 0 when there is none.
    struct Range {
        std::uint16_t nearest = 0;
        std::uint16_t farthest = 0;
    };

    /// Over all frames.
    [[nodiscard]] Range range() const noexcept;
    /// Share of the pixels of all frames that had no depth.
    [[nodiscard]] double blind() const noexcept;
    void measure() noexcept;
    void writePicture();
    void writeCloud();

    const std::string camera; ///< for the picture's title
    const FrameSize size;
    const std::shared_ptr<const StreamInfo> info;
    std::optional<Frame> last; ///< while a cloud is wanted
    FrameCounter counter;
    std::unique_ptr<OutputFile> picture;
    std::unique_ptr<OutputFile> cloud;
    std::unique_ptr<OutputFile> cloudPicture;
    std::unique_ptr<OutputFile> file;
    std::uint64_t rawBytes = 0;       ///< of the whole frames in the file
    std::vector<std::uint16_t> depth; ///< the last frame's; empty before the first
    std::uint64_t zeros = 0;
    Range seen{0xFFFF, 0};
};

} // namespace Zentara::Tool
