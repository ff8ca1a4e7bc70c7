#include <algorithm>
#include <numeric>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/recording.h>
#include <zentara/host/user_log.h>
#include <zentara/utils/binary_writer.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>

#include "host/files/file_failure.h"
#include "host/recordings/recording_format.h"
#include "host/recordings/stream_chunk.h"
#include "host/streams/frame_draft.h"

namespace Zentara::Host {

using namespace RecordingFormat;
using Utils::BinaryWriter;
using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr std::size_t keptFrames = 8; ///< more than enough to make room for the end

void writeChecksum(BinaryWriter& bytes) {
    const Utils::ByteArray content = bytes.toByteArray();
    bytes.write(checksum(content.data(), static_cast<std::size_t>(content.size())));
}

} // namespace

struct Recorder::Impl {
    Impl(const std::string& path, const std::vector<StreamInfo>& streams, const OutputFile::Rules& rules)
        : file(path, rules), counts(streams.size()), readings(streams.size()) {
        for (const StreamInfo& stream : streams)
            modes.push_back(stream.mode);
    }

    void writeHeader() ZENTARA_REQUIRES(lock);
    void writeTemperatures(std::uint16_t stream, const FrameData& frame) ZENTARA_REQUIRES(lock);
    void writeChunk(std::uint32_t tag, std::uint16_t stream, std::uint16_t flags, std::int64_t micros,
                    const void* payload, std::size_t size);
    void writeEnd() ZENTARA_REQUIRES(lock);
    void put(const BinaryWriter& bytes);

    OutputFile file;
    std::vector<Mode> modes; ///< one a stream; never changes
    mutable Utils::Threading::Mutex lock;
    struct Written {
        std::uint16_t stream;
        std::uint64_t start;
    };
    std::vector<std::uint64_t> counts ZENTARA_GUARDED_BY(lock); ///< frames, one a stream
    std::vector<std::vector<SensorValue>>
        readings ZENTARA_GUARDED_BY(lock);              ///< that the file holds last, one a stream
    std::vector<Written> last ZENTARA_GUARDED_BY(lock); ///< the last frames
    std::uint64_t end ZENTARA_GUARDED_BY(lock) = 0;     ///< of what is whole
};

Recorder::Recorder(const std::string& path, const std::vector<StreamInfo>& streams,
                   const OutputFile::Rules& rules) {
    beginUserLog();
    if (streams.empty() || streams.size() > mostStreams)
        throw Failure(Failure::Usage, Format("cannot record % streams; 1 to % fit into a file") %
                                          streams.size() % mostStreams);
    impl = std::make_unique<Impl>(path, streams, rules);
    AutoLock hold(impl->lock);
    impl->writeHeader();
    for (std::size_t index = 0; index < streams.size(); ++index) {
        const Utils::ByteArray chunk = streamChunk(streams[index]);
        impl->writeChunk(Tag_STREAM, static_cast<std::uint16_t>(index), 0, 0, chunk.data(),
                         static_cast<std::size_t>(chunk.size()));
    }
    impl->end = impl->file.size();
}

Recorder::~Recorder() = default;

void Recorder::add(std::size_t stream, const Frame& frame) {
    AutoLock hold(impl->lock);
    if (stream >= impl->counts.size())
        throw Failure(Failure::Usage, Format("cannot record a frame of stream %: there are %") % stream %
                                          impl->counts.size());
    const auto index = static_cast<std::uint16_t>(stream);
    const FrameData& data = FrameDraft::of(frame);
    if (data.corrections != 0)
        throw Failure(Failure::Usage, "cannot record a frame whose depth is corrected",
                      "a recording holds what the camera delivered, and makes the corrections anew");
    const std::uint16_t flags = data.isFirstAfterReturn ? Flag_AFTER_RETURN : 0;
    if (frame.info().mode != impl->modes[stream])
        throw Failure(Failure::Usage,
                      Format("cannot record a frame in the mode % as one of stream %") %
                          frame.info().mode.name % stream,
                      "that one is recorded in the mode " + impl->modes[stream].name);
    std::uint64_t start = impl->end;
    try {
        impl->writeTemperatures(index, data);
        start = impl->file.size();
        impl->writeChunk(Tag_FRAME, index, flags, frame.deviceMicros(), frame.bytes().data(),
                         frame.bytes().size());
    } catch (const FileFailure&) {
        impl->readings[stream].clear(); // whatever of them was written is cut off
        impl->file.cut(impl->end);      // the next frame, of whatever stream, goes behind a whole one
        throw;
    }
    ++impl->counts[stream];
    impl->last.push_back({index, start});
    if (impl->last.size() > keptFrames)
        impl->last.erase(impl->last.begin());
    impl->end = impl->file.size();
}

void Recorder::commit() {
    AutoLock hold(impl->lock);
    if (impl->file.isCommitted())
        return;
    // A full disk may have no room for the end, either: frames are given up from the last one on until there is.
    for (;;) {
        try {
            impl->writeEnd();
            break;
        } catch (const FileFailure&) {
            if (impl->last.empty())
                throw;
            impl->end = impl->last.back().start;
            --impl->counts.at(impl->last.back().stream);
            impl->last.pop_back();
        }
    }
    impl->file.commit();
}

void Recorder::discard() noexcept {
    AutoLock hold(impl->lock);
    impl->file.discard();
}

std::uint64_t Recorder::frames() const {
    AutoLock hold(impl->lock);
    return std::accumulate(impl->counts.begin(), impl->counts.end(), std::uint64_t{0});
}

const std::string& Recorder::path() const noexcept { return impl->file.path(); }

void Recorder::Impl::writeHeader() {
    BinaryWriter bytes;
    bytes.write(magic.data(), static_cast<int>(magic.size()));
    bytes.write(version);
    bytes.write(static_cast<std::uint16_t>(counts.size()));
    writeChecksum(bytes);
    put(bytes);
}

/// Only when they have changed, which is every few seconds.
void Recorder::Impl::writeTemperatures(std::uint16_t stream, const FrameData& frame) {
    const SensorValue* const begin = frame.temperatures.data();
    const SensorValue* const close = begin + frame.temperatureCount;
    std::vector<SensorValue>& before = readings[stream];
    if (std::equal(begin, close, before.begin(), before.end()))
        return;
    BinaryWriter bytes;
    for (const SensorValue* value = begin; value != close; ++value) {
        bytes.write(value->sensorId);
        bytes.write(value->value);
    }
    const Utils::ByteArray payload = bytes.toByteArray();
    writeChunk(Tag_TEMPERATURES, stream, 0, 0, payload.data(), static_cast<std::size_t>(payload.size()));
    before.assign(begin, close);
}

void Recorder::Impl::writeEnd() {
    file.cut(end); // what an attempt before this one has written
    BinaryWriter bytes;
    for (const std::uint64_t count : counts)
        bytes.write(count);
    const Utils::ByteArray payload = bytes.toByteArray();
    writeChunk(Tag_END, 0, 0, 0, payload.data(), static_cast<std::size_t>(payload.size()));
}

void Recorder::Impl::writeChunk(std::uint32_t tag, std::uint16_t stream, std::uint16_t flags,
                                std::int64_t micros, const void* payload, std::size_t size) {
    if (size > mostPayloadBytes)
        throw Failure(Failure::Failed,
                      Format("cannot record a frame of % bytes; at most % fit") % size % mostPayloadBytes);
    BinaryWriter header;
    header.write(tag);
    header.write(stream);
    header.write(flags);
    header.write(micros);
    header.write(static_cast<std::uint32_t>(size));
    writeChecksum(header);
    put(header);
    file.append(payload, size);
    BinaryWriter trailer;
    trailer.write(checksum(payload, size));
    put(trailer);
}

void Recorder::Impl::put(const BinaryWriter& bytes) {
    const Utils::ByteArray content = bytes.toByteArray();
    file.append(content.data(), static_cast<std::size_t>(content.size()));
}

} // namespace Zentara::Host
