#pragma once

#include <memory>
#include <string>

#include <zentara/host/output_file.h>
#include <zentara/utils/wave_writer.h>

#include "host/cameras/stream_description.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/stream_sink.h"

namespace Zentara::Tool {

/// Takes the blocks of an audio stream, into a WAV file if asked.
class AudioRecorder final : public StreamSink {
public:
    /// \param count samples per channel to take, 0 for as many as come; what a block holds beyond is cut off. \param path of the WAV file;
    /// empty for none. \throws Failure when the file cannot be opened.
    AudioRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& path);

    bool take(const std::uint8_t* data, std::size_t size, std::int64_t micros) override;
    void resume() override {}
    [[nodiscard]] bool full() const override { return taken >= wanted && wanted != 0; }
    void commit() override;
    void discard() override;
    void print(std::ostream& out) const override;
    void fill(Json& stream) const override;

private:
    void check(const char* what, int code) const;
    /// Makes a file that could not be written to its end say what whole samples it has.
    void repair();

    std::unique_ptr<OutputFile>
        file; ///< outlives the writer, which must have closed when the part is removed
    WaveWriter writer;
    const int rate;
    const int channels;
    const std::size_t blockAlignment;
    const std::uint64_t wanted;
    std::uint64_t taken = 0; ///< samples per channel
    bool isCut = false;      ///< not all could be written
};

} // namespace Zentara::Tool
