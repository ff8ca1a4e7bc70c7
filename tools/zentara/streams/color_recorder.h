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

/// Takes the frames of a colour stream in packed YUY2: counts them and makes a picture of the last one if asked.
class ColorRecorder final : public StreamSink {
public:
    /// \param count frames to take. \param pngPath for the picture; empty for none.
    /// \throws Failure when a picture is wanted of frames that are compressed, or have no known size.
    ColorRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& pngPath);

    bool take(const std::uint8_t* data, std::size_t size, std::int64_t micros) override;
    void resume() override { counter.resume(); }
    [[nodiscard]] bool full() const override { return counter.full(); }
    void commit() override;
    void discard() override;
    void print(std::ostream& out) const override;
    void fill(Json& stream) const override;

private:
    const FrameSize size;
    FrameCounter counter;
    std::unique_ptr<OutputFile> picture;
    std::vector<std::uint8_t> last; ///< as it came; empty before the first, and without a picture
};

} // namespace Zentara::Tool
