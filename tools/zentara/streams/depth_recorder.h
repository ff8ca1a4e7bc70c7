#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/host/output_file.h>

#include "host/cameras/stream_description.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/frame_counter.h"
#include "tools/zentara/streams/stream_sink.h"

namespace Zentara::Tool {

/// Takes the frames of a depth stream: counts and measures them, makes a picture of the last one and writes all to a
/// file if asked. A frame is a plane of 16-bit depth in millimetres, then whatever the camera adds.
class DepthRecorder final : public StreamSink {
public:
    /// \param count frames to take. \param pngPath, rawPath for the picture and for the frames as they came; empty
    /// for none. \throws Failure when the mode has no size, or a file cannot be opened.
    DepthRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& pngPath,
                  const std::string& rawPath);

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

    const std::string camera; ///< for the picture's title
    const FrameSize size;
    FrameCounter counter;
    std::unique_ptr<OutputFile> picture;
    std::unique_ptr<OutputFile> file;
    std::uint64_t rawBytes = 0;       ///< of the whole frames in the file
    std::vector<std::uint16_t> depth; ///< the last frame's; empty before the first
    std::uint64_t zeros = 0;
    Range seen{0xFFFF, 0};
};

} // namespace Zentara::Tool
