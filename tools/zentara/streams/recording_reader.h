#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <vector>

#include "host/cameras/stream_description.h"
#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

/// A frame of a recording.
struct RecordedFrame {
    std::uint16_t stream = 0;
    std::int64_t micros = 0; ///< when it was taken
    std::vector<std::uint8_t> bytes;
};

/// Reads what RecordingWriter wrote. Nothing that the file says is believed before its checksum was right, and no
/// memory is taken for bytes that the file does not have. Separate.
class RecordingReader final {
public:
    /// Reads the descriptions of the streams.
    /// \throws Failure when the file cannot be read, is no recording, is of another version or damaged.
    explicit RecordingReader(const std::string& path);

    /// The same of bytes that lie elsewhere. \param name what to call them in messages
    RecordingReader(std::unique_ptr<std::istream> bytes, const std::string& name);

    [[nodiscard]] const std::vector<StreamDescription>& streams() const noexcept { return descriptions; }

    /// Only frames of that stream from now on; the others are passed over, their payload unread.
    void select(std::uint16_t stream);

    /// The next frame. \return false at the end of a whole recording
    /// \throws Failure naming the place when the file is cut short or damaged there; the frames before it
    /// have been delivered then.
    [[nodiscard]] bool next(RecordedFrame& frame);

    /// How many frames were passed or delivered.
    [[nodiscard]] std::uint64_t frames() const noexcept;

private:
    struct Chunk;

    [[noreturn]] void fail(const std::string& what) const;
    void get(void* data, std::size_t count, const char* what);
    void readHeader();
    void readStream(std::uint16_t index);
    void checkEnd(const Chunk& chunk);
    [[nodiscard]] Chunk readChunk();
    [[nodiscard]] std::vector<std::uint8_t> readPayload(const Chunk& chunk);
    void skipPayload(const Chunk& chunk);

    const std::string path;
    const std::unique_ptr<std::istream> in;
    std::uint64_t size = 0;
    std::uint64_t position = 0; ///< of the next byte
    std::uint64_t start = 0;    ///< of the chunk that is being read
    std::vector<StreamDescription> descriptions;
    std::vector<std::uint64_t> counts;
    std::int32_t selected = -1; ///< -1: all streams
    bool ended = false;
};

} // namespace Zentara::Tool
