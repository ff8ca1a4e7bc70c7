#include "tools/zentara/streams/recording_reader.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <system_error>
#include <utility>

#include <zentara/utils/binary_reader.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "host/files/paths.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/recording_format.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {

using namespace RecordingFormat;
using Utils::BinaryReader;
using Utils::Format;

struct RecordingReader::Chunk {
    std::uint32_t tag = 0;
    std::uint16_t stream = 0;
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
        throw Failure(Failure::Failed, Utils::formatLastError(Format("cannot read recording '%'") % path));
    size = static_cast<std::uint64_t>(end);
    in->seekg(0);
    readHeader();
    for (std::uint16_t index = 0; index < descriptions.size(); ++index)
        readStream(index);
}

void RecordingReader::select(std::uint16_t stream) { selected = stream; }

bool RecordingReader::next(RecordedFrame& frame) {
    while (!ended) {
        const Chunk chunk = readChunk();
        if (chunk.tag == Tag_END) {
            checkEnd(chunk);
            break;
        }
        if (chunk.tag != Tag_FRAME)
            fail("no frame begins here");
        const bool wanted = selected < 0 || chunk.stream == selected;
        if (wanted)
            frame = {chunk.stream, chunk.micros, readPayload(chunk)};
        else
            skipPayload(chunk);
        ++counts[chunk.stream];
        if (wanted)
            return true;
    }
    return false;
}

std::uint64_t RecordingReader::frames() const noexcept {
    return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
}

void RecordingReader::fail(const std::string& what) const {
    throw Failure(Failure::Failed, Format("recording '%', byte %: %; % whole frames come before") % path %
                                       start % what % frames());
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
    get(bytes.data(), std::min<std::uint64_t>(bytes.size(), size), "the file header");
    if (!std::equal(magic.begin(), magic.end(), bytes.begin()))
        fail("it is no recording");
    if (size < bytes.size())
        fail("it is cut short: it ends in the file header");
    BinaryReader reader(bytes.data() + magic.size(), static_cast<int>(bytes.size() - magic.size()));
    const std::uint16_t written = reader.readUShort();
    const std::uint16_t streams = reader.readUShort();
    if (reader.readUInt() != checksum(bytes.data(), bytes.size() - checksumBytes))
        fail("the file header is damaged");
    if (written != version)
        fail(Format("it is of version %; this program reads version %") % written % version);
    if (streams == 0 || streams > mostStreams)
        fail(Format("it has % streams; 1 to % are possible") % streams % mostStreams);
    descriptions.resize(streams);
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
    static_cast<void>(reader.readUShort());
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

std::vector<std::uint8_t> RecordingReader::readPayload(const Chunk& chunk) {
    if (chunk.length + checksumBytes > size - position)
        fail(Format("it is cut short: a chunk of % bytes begins here, % are left") % chunk.length %
             (size - position));
    std::vector<std::uint8_t> bytes(chunk.length);
    get(bytes.data(), bytes.size(), "a payload");
    std::array<std::uint8_t, checksumBytes> stored{};
    get(stored.data(), stored.size(), "a checksum");
    if (BinaryReader(stored.data(), checksumBytes).readUInt() != checksum(bytes.data(), bytes.size()))
        fail(Format("the % bytes of a chunk are damaged") % bytes.size());
    return bytes;
}

void RecordingReader::skipPayload(const Chunk& chunk) {
    const std::uint64_t bytes = chunk.length + checksumBytes;
    if (bytes > size - position)
        fail(Format("it is cut short: a chunk of % bytes begins here, % are left") % chunk.length %
             (size - position));
    in->seekg(static_cast<std::streamoff>(bytes), std::ios::cur);
    position += bytes;
}

void RecordingReader::readStream(std::uint16_t index) {
    const Chunk chunk = readChunk();
    if (chunk.tag != Tag_STREAM || chunk.stream != index)
        fail(Format("the description of stream % is missing") % index);
    const std::vector<std::uint8_t> bytes = readPayload(chunk);
    StreamDescription& description = descriptions[index];
    NodeEvent& node = description.node;
    try {
        BinaryReader reader(bytes.data(), static_cast<int>(bytes.size()));
        node.nodeType = static_cast<NodeType>(reader.readInt());
        for (std::int32_t& field : description.mode.fields)
            field = reader.readInt();
        for (std::uint32_t* id : {&node.vendorId, &node.productId, &node.revision, &node.interfaceNumber})
            *id = reader.readUInt();
        node.nodeIndex = reader.readUInt();
        for (std::string* text : {&node.path, &node.parentPath, &node.name, &node.serialNumber})
            *text = reader.readString();
    } catch (const Utils::UIOException&) {
        fail(Format("the description of stream % is too short") % index);
    }
    for (std::uint16_t earlier = 0; earlier < index; ++earlier) {
        if (descriptions[earlier].node == node)
            fail(Format("streams % and % are of the same node") % earlier % index);
    }
    if (!description.plausible())
        fail(Format("stream % is of kind % and in a mode that does not exist") % index %
             static_cast<int>(node.nodeType));
}

/// The end tells how many frames each stream has: whole frames that were cut out show here.
void RecordingReader::checkEnd(const Chunk& chunk) {
    const std::vector<std::uint8_t> bytes = readPayload(chunk);
    if (bytes.size() != counts.size() * sizeof counts[0])
        fail("the end is of the wrong size");
    BinaryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    for (std::size_t stream = 0; stream < counts.size(); ++stream) {
        const std::uint64_t recorded = reader.readULong();
        if (recorded != counts[stream])
            fail(Format("stream % was recorded with % frames and has %") % stream % recorded %
                 counts[stream]);
    }
    if (position != size)
        fail(Format("% bytes follow the end") % (size - position));
    ended = true;
}

} // namespace Zentara::Tool
