#include "tools/zentara/streams/recording_writer.h"

#include <numeric>

#include <zentara/utils/binary_writer.h>
#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/recording_format.h"

namespace Zentara::Tool {

using namespace RecordingFormat;
using Utils::BinaryWriter;
using Utils::Threading::AutoLock;

namespace {

constexpr std::size_t keptFrames = 8; ///< more than enough to make room for the end

void writeChecksum(BinaryWriter& bytes) {
    const Utils::ByteArray content = bytes.toByteArray();
    bytes.write(checksum(content.data(), static_cast<std::size_t>(content.size())));
}

} // namespace

RecordingWriter::RecordingWriter(const std::string& path, const std::vector<StreamDescription>& streams)
    : file(path), counts(streams.size()) {
    if (streams.empty() || streams.size() > mostStreams)
        throw Failure(Failure::Failed, Utils::Format("cannot record % streams; 1 to % fit into a file") %
                                           streams.size() % mostStreams);
    writeHeader();
    for (std::size_t index = 0; index < streams.size(); ++index)
        writeStream(static_cast<std::uint16_t>(index), streams[index]);
    end = file.size();
}

void RecordingWriter::append(std::uint16_t stream, const std::uint8_t* data, std::size_t size,
                             std::int64_t micros) {
    AutoLock hold(lock);
    try {
        writeChunk(Tag_FRAME, stream, micros, data, size);
    } catch (const FileFailure&) {
        file.cut(end); // the next frame, of whatever stream, goes behind a whole one
        throw;
    }
    ++counts.at(stream);
    last.push_back({stream, end});
    if (last.size() > keptFrames)
        last.erase(last.begin());
    end = file.size();
}

std::uint64_t RecordingWriter::frames() const {
    AutoLock hold(lock);
    return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
}

void RecordingWriter::writeEnd() {
    file.cut(end);
    BinaryWriter bytes;
    for (const std::uint64_t count : counts)
        bytes.write(count);
    const Utils::ByteArray payload = bytes.toByteArray();
    writeChunk(Tag_END, 0, 0, payload.data(), static_cast<std::size_t>(payload.size()));
}

void RecordingWriter::commit() {
    AutoLock hold(lock);
    for (;;) {
        try {
            writeEnd();
            break;
        } catch (const Failure&) {
            if (last.empty())
                throw;
            end = last.back().start;
            --counts.at(last.back().stream);
            last.pop_back();
        }
    }
    file.commit();
}

void RecordingWriter::discard() {
    AutoLock hold(lock);
    file.discard();
}

void RecordingWriter::writeHeader() {
    BinaryWriter bytes;
    bytes.write(magic.data(), static_cast<int>(magic.size()));
    bytes.write(version);
    bytes.write(static_cast<std::uint16_t>(counts.size()));
    writeChecksum(bytes);
    put(bytes);
}

void RecordingWriter::writeStream(std::uint16_t stream, const StreamDescription& description) {
    const NodeEvent& node = description.node;
    BinaryWriter bytes;
    bytes.write(static_cast<std::int32_t>(node.nodeType));
    for (const std::int32_t field : description.mode.fields)
        bytes.write(field);
    for (const std::uint32_t id : {node.vendorId, node.productId, node.revision, node.interfaceNumber})
        bytes.write(id);
    bytes.write(node.nodeIndex);
    for (const std::string* text : {&node.path, &node.parentPath, &node.name, &node.serialNumber})
        bytes.write(*text);
    const Utils::ByteArray payload = bytes.toByteArray();
    writeChunk(Tag_STREAM, stream, 0, payload.data(), static_cast<std::size_t>(payload.size()));
}

void RecordingWriter::writeChunk(std::uint32_t tag, std::uint16_t stream, std::int64_t micros,
                                 const void* payload, std::size_t size) {
    if (size > mostPayloadBytes)
        throw Failure(Failure::Failed, Utils::Format("cannot record a frame of % bytes; at most % fit") %
                                           size % mostPayloadBytes);
    BinaryWriter header;
    header.write(tag);
    header.write(stream);
    header.write(std::uint16_t{0});
    header.write(micros);
    header.write(static_cast<std::uint32_t>(size));
    writeChecksum(header);
    put(header);
    put(payload, size);
    BinaryWriter trailer;
    trailer.write(checksum(payload, size));
    put(trailer);
}

void RecordingWriter::put(const BinaryWriter& bytes) {
    const Utils::ByteArray content = bytes.toByteArray();
    put(content.data(), static_cast<std::size_t>(content.size()));
}

void RecordingWriter::put(const void* data, std::size_t size) { file.append(data, size); }

} // namespace Zentara::Tool
