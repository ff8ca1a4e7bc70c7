#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <zentara/utils/mutex.h>

#include "tools/zentara/pending_file.h"
#include "tools/zentara/streams/stream_description.h"

namespace Zentara::Utils {
class BinaryWriter;
}

namespace Zentara::Tool {

/// Writes streams into one file, as docs/recordings.md describes it. The file takes its name with commit().
class RecordingWriter final {
public:
    /// \throws ToolFailure when the file cannot be opened, or there are too many streams.
    RecordingWriter(const std::string& path, const std::vector<StreamDescription>& streams);

    /// Adds a frame of the stream with that index. Safe. \throws ToolFailure when it cannot be written.
    void append(std::uint16_t stream, const std::uint8_t* data, std::size_t size, std::int64_t micros);

    /// Ends the recording and completes the file.
    void commit();
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

    PendingFile file; ///< outlives the stream, which must have closed when the part is removed
    Utils::Threading::Mutex lock;
    std::ofstream out;
    std::vector<std::uint64_t> counts;
};

} // namespace Zentara::Tool
