#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <zentara/audio_configuration.h>
#include <zentara/utils/wave_writer.h>

#include "tools/zentara/pending_file.h"

namespace Zentara::Tool {

/// Takes the blocks of an audio stream into a WAV file.
class AudioRecorder final {
public:
    /// \param mode of the stream. \param count samples per channel to take; what a block holds beyond is cut off.
    /// \throws ToolFailure when the file cannot be opened.
    AudioRecorder(const std::string& path, const AudioConfiguration& mode, std::uint64_t count);

    /// \return false once enough has come. \throws ToolFailure when the file cannot be written.
    bool take(const std::uint8_t* data, std::size_t size, std::int64_t micros);

    /// Completes the file.
    void commit();
    /// Closes and removes what has been written.
    void discard();

    /// Samples per channel taken so far.
    [[nodiscard]] std::uint64_t samples() const noexcept { return taken; }
    [[nodiscard]] int sampleRate() const noexcept { return rate; }
    [[nodiscard]] int channels() const noexcept { return channelCount; }

private:
    void check(const char* what, int code) const;

    PendingFile file; ///< outlives the writer, which must have closed when the part is removed
    WaveWriter writer;
    const int rate;
    const int channelCount;
    const std::size_t blockAlignment;
    const std::uint64_t wanted;
    std::uint64_t taken = 0;
};

} // namespace Zentara::Tool
