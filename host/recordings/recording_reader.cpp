#include "host/recordings/recording_reader.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <numeric>

#include <zentara/host/failure.h>
#include <zentara/utils/binary_reader.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "host/files/paths.h"
#include "host/recordings/recording_format.h"
#include "host/recordings/stream_chunk.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

using namespace RecordingFormat;
using Utils::BinaryReader;
using Utils::Format;

struct RecordingReader::Chunk {
    std::uint32_t tag = 0;
    std::uint16_t stream = 0;
    std::uint16_t flags = 0;
    std::int64_t micros = 0;
    std::uint32_t length = 0;
};

namespace {

/// Opening a pipe would wait for its other end.
std::unique_ptr<std::istream> openRecording(const std::string& path) {
    std::error_code ignored;
    const auto status = std::filesystem::status(pathOf(path), ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw Failure(
            Failure::Failed,
            Format("cannot read recording '%': it is there and no file; a recording is read from a file") %
                Utils::visibleText(path));
    return std::make_unique<std::ifstream>(pathOf(path), std::ios::binary);
}

} // namespace

RecordingReader::RecordingReader(const std::string& file) : RecordingReader(openRecording(file), file) {}

RecordingReader::RecordingReader(std::unique_ptr<std::istream> bytes, const std::string& name)
    : path(name), in(std::move(bytes)) {
    in->seekg(0, std::ios::end);
    const auto end = *in ? static_cast<std::streamoff>(in->tellg()) : std::streamoff{-1};
    if (end < 0)
        failFile("read recording", path);
    size = static_cast<std::uint64_t>(end);
    in->seekg(0);
    readHeader();
    for (std::uint16_t index = 0; index < descriptions.size(); ++index)
        readStream(index);
    if (written == 1)
        shareNodes();
    firstPlace = position;
}

std::optional<FrameHead> RecordingReader::next() {
    while (!ended) {
        if (waits) // nobody wanted the frame's bytes
            moveTo(position + pending + checksumBytes);
        waits = false;
        const std::uint64_t before = position;
        try {
            const Chunk chunk = readChunk();
            switch (chunk.tag) {
            case Tag_END:
                checkEnd(chunk);
                break;
            case Tag_TEMPERATURES:
                readTemperatures(chunk);
                break;
            case Tag_FRAME:
                checkRoom(chunk.length);
                if (written > 1 && (chunk.flags & ~Flag_AFTER_RETURN) != 0)
                    fail(Format("a frame has the flags 0x%{:x4}") % unsigned{chunk.flags});
                pending = chunk.length;
                pendingStream = chunk.stream;
                waits = true;
                ++counts[chunk.stream];
                return FrameHead{chunk.stream, static_cast<std::uint16_t>(written > 1 ? chunk.flags : 0),
                                 chunk.micros, chunk.length, start};
            default:
                fail("no frame begins here");
            }
        } catch (const Failure&) {
            moveTo(before); // to fail there again
            throw;
        }
    }
    return std::nullopt;
}

void RecordingReader::read(void* bytes) {
    const std::uint64_t before = start;
    waits = false;
    --counts[pendingStream]; // for the failure: it is none of the whole ones
    try {
        readPayload(pending, bytes);
    } catch (const Failure&) {
        moveTo(before);
        throw;
    }
    ++counts[pendingStream];
}

void RecordingReader::seek(std::uint64_t place) {
    moveTo(place);
    waits = false;
    ended = false;
    counting = false;
}

void RecordingReader::rewind() {
    seek(firstPlace);
    counting = true;
    counts.assign(counts.size(), 0);
    readings.assign(readings.size(), {});
}

std::uint64_t RecordingReader::frames() const noexcept {
    return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
}

void RecordingReader::fail(const std::string& what) const {
    throw Failure(Failure::Failed, Format("recording '%', byte %: %; % whole frames come before") % path %
                                       start % what % frames());
}

void RecordingReader::moveTo(std::uint64_t place) {
    in->clear(); // an end that was met would fail every seek
    in->seekg(static_cast<std::streamoff>(place));
    position = place;
}

void RecordingReader::get(void* data, std::size_t count, const char* what) {
    if (count > size - position)
        fail(Format("it is cut short: % takes % bytes, % are left") % what % count % (size - position));
    in->read(static_cast<char*>(data), static_cast<std::streamsize>(count));
    if (!*in)
        fail(Utils::formatLastError(Format("cannot read %") % what));
    position += count;
}

void RecordingReader::readHeader() {
    std::array<std::uint8_t, fileHeaderBytes> bytes{};
    // As far as it goes: a short file of another kind is no recording, rather than one that was cut short.
    get(bytes.data(), std::min<std::uint64_t>(bytes.size(), size), "the file header");
    if (!std::equal(magic.begin(), magic.end(), bytes.begin()))
        fail("it is no recording");
    if (size < bytes.size())
        fail("it is cut short: it ends in the file header");
    BinaryReader reader(bytes.data() + magic.size(), static_cast<int>(bytes.size() - magic.size()));
    written = reader.readUShort();
    const std::uint16_t streams = reader.readUShort();
    if (reader.readUInt() != checksum(bytes.data(), bytes.size() - checksumBytes))
        fail("the file header is damaged");
    if (written < oldestVersion || written > RecordingFormat::version)
        fail(Format("it is of version %; this program reads versions % to %") % written % oldestVersion %
             RecordingFormat::version);
    if (streams == 0 || streams > mostStreams)
        fail(Format("it has % streams; 1 to % are possible") % streams % mostStreams);
    descriptions.resize(streams);
    readings.resize(streams);
    counts.resize(streams);
}

RecordingReader::Chunk RecordingReader::readChunk() {
    start = position;
    std::array<std::uint8_t, chunkHeaderBytes> bytes{};
    get(bytes.data(), bytes.size(), "the head of a chunk");
    BinaryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    Chunk chunk;
    chunk.tag = reader.readUInt();
    chunk.stream = reader.readUShort();
    chunk.flags = reader.readUShort();
    chunk.micros = reader.readLong();
    chunk.length = reader.readUInt();
    if (reader.readUInt() != checksum(bytes.data(), bytes.size() - checksumBytes))
        fail("the head of a chunk is damaged");
    if (chunk.stream >= descriptions.size())
        fail(Format("a chunk belongs to stream %; there are %") % chunk.stream % descriptions.size());
    if (chunk.length > mostPayloadBytes)
        fail(Format("a chunk has % bytes; at most % are possible") % chunk.length % mostPayloadBytes);
    return chunk;
}

void RecordingReader::checkRoom(std::uint32_t length) const {
    if (std::uint64_t{length} + checksumBytes > size - position)
        fail(Format("it is cut short: a chunk of % bytes begins here, % are left") % length %
             (size - position));
}

std::vector<std::uint8_t> RecordingReader::readPayload(const Chunk& chunk) {
    checkRoom(chunk.length); // before memory is taken for what is not there
    std::vector<std::uint8_t> bytes(chunk.length);
    readPayload(chunk.length, bytes.data());
    return bytes;
}

void RecordingReader::readPayload(std::uint32_t length, void* bytes) {
    get(bytes, length, "a payload");
    std::array<std::uint8_t, checksumBytes> stored{};
    get(stored.data(), stored.size(), "a checksum");
    if (BinaryReader(stored.data(), checksumBytes).readUInt() != checksum(bytes, length))
        fail(Format("the % bytes of a chunk are damaged") % length);
}

void RecordingReader::readStream(std::uint16_t index) {
    const Chunk chunk = readChunk();
    if (chunk.tag != Tag_STREAM || chunk.stream != index)
        fail(Format("the description of stream % is missing") % index);
    const std::vector<std::uint8_t> bytes = readPayload(chunk);
    try {
        descriptions[index] = readStreamChunk(bytes, written);
    } catch (const Failure& failure) {
        fail(Format("the description of stream % %") % index % failure.what());
    }
}

/// Version 1 told of each stream alone.
void RecordingReader::shareNodes() {
    const std::vector<StreamInfo> alone = descriptions;
    for (StreamInfo& info : descriptions) {
        info.camera.kinds.clear();
        info.camera.nodes.clear();
        for (const StreamInfo& other : alone) {
            if (other.camera.path != info.camera.path)
                continue;
            info.camera.kinds.push_back(other.mode.kind);
            info.camera.nodes.push_back(other.camera.nodes.front());
        }
    }
}

void RecordingReader::readTemperatures(const Chunk& chunk) {
    const std::vector<std::uint8_t> bytes = readPayload(chunk);
    constexpr std::size_t readingBytes = sizeof(std::int32_t) + sizeof(float);
    if (bytes.size() % readingBytes != 0)
        fail(Format("% bytes are no temperatures") % bytes.size());
    BinaryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    SensorValueArray& now = readings[chunk.stream];
    now.values.resize(bytes.size() / readingBytes);
    for (SensorValue& value : now.values) {
        value.sensorId = reader.readInt();
        value.value = reader.readFloat();
    }
}

/// The end tells how many frames each stream has: whole frames that were cut out show here.
void RecordingReader::checkEnd(const Chunk& chunk) {
    const std::vector<std::uint8_t> bytes = readPayload(chunk);
    if (bytes.size() != counts.size() * sizeof counts[0])
        fail("the end is of the wrong size");
    BinaryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    for (std::size_t stream = 0; stream < counts.size(); ++stream) {
        const std::uint64_t recorded = reader.readULong();
        // Whoever has jumped has not seen every frame.
        if (counting && recorded != counts[stream])
            fail(Format("stream % was recorded with % frames and has %") % stream % recorded %
                 counts[stream]);
    }
    if (position != size)
        fail(Format("% bytes follow the end") % (size - position));
    ended = true;
}

} // namespace Zentara::Host
