#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zentara/host/output_file.h>
#include <zentara/utils/mutex.h>

#include "host/cameras/stream_description.h"
#include "tools/zentara/exit_code.h"

namespace Zentara::Utils {
class BinaryWriter;
}

namespace Zentara::Tool {

/// Writes streams into one recording. The file takes its name with commit().
class RecordingWriter final {
public:
    /// \throws Failure when the file cannot be opened, or there are too many streams.
    RecordingWriter(const std::string& path, const std::vector<StreamDescription>& streams);

    /// Adds a frame of the stream with that index. Safe. \throws Failure when it cannot be written.
    void append(std::uint16_t stream, const std::uint8_t* data, std::size_t size, std::int64_t micros);

    /// Ends the recording and completes the file. One that could not be written on to, because the disk is full, ends
    /// with its last whole frame; a frame more goes where there is no room to say that it has ended.
    /// \throws Failure when even that cannot be written
    void commit();
    /// How many frames of all streams stand in it.
    [[nodiscard]] std::uint64_t frames() const;
    /// Closes and removes what has been written.
    void discard();

    [[nodiscard]] const std::string& path() const noexcept { return file.path(); }

private:
    void writeHeader();
    void writeStream(std::uint16_t stream, const StreamDescription& description);
    void writeChunk(std::uint32_t tag, std::uint16_t stream, std::int64_t micros, const void* payload,
                    std::size_t size);
    void put(const void* data, std::size_t size);
    void put(const Utils::BinaryWriter& bytes);

    void writeEnd();

    OutputFile file;
    mutable Utils::Threading::Mutex lock;
    std::vector<std::uint64_t> counts;
    struct Written {
        std::uint16_t stream;
        std::uint64_t start;
    };
    std::vector<Written> last; ///< some of the frames
    std::uint64_t end = 0;     ///< of what is whole
};

} // namespace Zentara::Tool
