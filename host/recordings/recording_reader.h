#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/stream_info.h>

namespace Zentara::Host {

/// What a recording says of a frame before its bytes.
struct FrameHead {
    std::uint16_t stream = 0;
    std::uint16_t flags = 0;  ///< a set of `RecordingFormat::Flag`
    std::int64_t micros = 0;  ///< when it was taken
    std::uint32_t length = 0; ///< bytes, which the file has
    std::uint64_t place = 0;  ///< of the frame's chunk in the file
};

/// Reads the chunks of a recording, one after the other. Nothing that the file says is believed before its checksum was
/// right, and no memory is taken for bytes that the file does not have. Separate.
class RecordingReader final {
public:
    /// Reads the descriptions of the streams.
    /// \throws Failure when the file cannot be read, is no recording, is of another version or damaged.
    explicit RecordingReader(const std::string& path);

    /// The same of bytes that lie elsewhere. \param name what to call them in messages
    RecordingReader(std::unique_ptr<std::istream> bytes, const std::string& name);

    [[nodiscard]] const std::vector<StreamInfo>& streams() const noexcept { return descriptions; }
    [[nodiscard]] std::uint16_t version() const noexcept { return written; }
    [[nodiscard]] const std::string& name() const noexcept { return path; }

    /// The head of the next frame. The payload of the one before is passed over unless it has been read.
    /// \return none at the end of a whole recording
    /// \throws Failure naming the place when the file is cut short or damaged there; again at every call
    [[nodiscard]] std::optional<FrameHead> next();

    /// The bytes of the frame that next() has found last; once. \param bytes room for its length
    void read(void* bytes);

    /// What the sensors of that stream's camera read when the frame was taken that next() has found last.
    [[nodiscard]] const SensorValueArray& temperatures(std::uint16_t stream) const {
        return readings.at(stream);
    }

    /// next() goes on with the chunk of a frame there, which it has found before. Temperatures stay as they are, and the
    /// end is not compared with what has come.
    void seek(std::uint64_t place);

    /// Begins again with the first frame.
    void rewind();

    /// How many frames were passed or delivered since the beginning.
    [[nodiscard]] std::uint64_t frames() const noexcept;

private:
    struct Chunk;

    [[noreturn]] void fail(const std::string& what) const;
    void get(void* data, std::size_t count, const char* what);
    void readHeader();
    void readStream(std::uint16_t index);
    void readTemperatures(const Chunk& chunk);
    void checkEnd(const Chunk& chunk);
    void shareNodes();
    [[nodiscard]] Chunk readChunk();
    [[nodiscard]] std::vector<std::uint8_t> readPayload(const Chunk& chunk);
    void readPayload(std::uint32_t length, void* bytes);
    void checkRoom(std::uint32_t length) const;
    void moveTo(std::uint64_t place);

    const std::string path;
    const std::unique_ptr<std::istream> in;
    std::uint16_t written = 0; ///< the file's version
    std::uint64_t size = 0;
    std::uint64_t position = 0;   ///< of the next byte
    std::uint64_t start = 0;      ///< of the chunk that is being read
    std::uint64_t firstPlace = 0; ///< behind the descriptions
    bool waits = false;           ///< the payload of a frame has not been read: of this
    std::uint32_t pending = 0;    ///< length
    std::uint16_t pendingStream = 0;
    bool counting = true; ///< everything since the beginning has been seen
    bool ended = false;
    std::vector<StreamInfo> descriptions;
    std::vector<SensorValueArray> readings; ///< one a stream
    std::vector<std::uint64_t> counts;      ///< frames, one a stream
};

} // namespace Zentara::Host
