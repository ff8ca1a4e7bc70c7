#include "tools/zentara/streams/streamed_camera.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "host/cameras/camera_bus.h"
#include "host/files/file_failure.h"
#include "tools/zentara/streams/recorded_stream.h"
#include "tools/zentara/streams/stream_reader.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::int64_t stallMicros = 5'000'000;
constexpr std::int64_t letGoMicros = 2'000'000;
constexpr std::int64_t retryMicros = 300'000; // longer than an enumerator takes to see a removal
constexpr std::int64_t absenceMicros = 1'000'000;
constexpr unsigned long letGoLookMilliseconds = 50;

/// Whether it is the same node of the same camera, perhaps in another socket.
bool sameNode(const NodeEvent& left, const NodeEvent& right) {
    return left.path == right.path ||
           (!left.serialNumber.empty() && left.serialNumber == right.serialNumber &&
            left.hardwareIds() == right.hardwareIds());
}

} // namespace

/// In an order that takes it apart safely: the reader's thread ends before the source that it reads goes.
struct StreamedCamera::Stream {
    StreamDescription description;
    std::shared_ptr<const StreamInfo> info; ///< of the frames that are recorded
    std::unique_ptr<StreamSink> sink;
    std::unique_ptr<StreamSource> source;
    std::unique_ptr<StreamReader> reader;
    bool present = true;      ///< its node is plugged in
    bool ended = false;       ///< nothing more is wanted, or comes
    std::uint64_t before = 0; ///< units of earlier readers
    std::uint64_t seen = 0;
    std::int64_t since = 0; ///< when `seen` changed last
    std::int64_t taken = 0; ///< the last unit's time; the reader's alone

    [[nodiscard]] std::uint64_t units() const { return before + (reader ? reader->progress() : 0); }
};

StreamedCamera::StreamedCamera(Json who, Open openStream, Utils::Threading::Signal& ended, bool ends)
    : identity(std::move(who)), opener(std::move(openStream)), wake(ended), finite(ends) {}

StreamedCamera::~StreamedCamera() = default;

const StreamDescription& StreamedCamera::open(const NodeEvent& node) {
    auto stream = std::make_unique<Stream>();
    stream->source = opener(node);
    stream->description = stream->source->description();
    stream->info = std::make_shared<StreamInfo>(recordedStream(stream->description));
    if (streams.empty())
        name = stream->source->label();
    streams.push_back(std::move(stream));
    return streams.back()->description;
}

void StreamedCamera::deliverTo(std::unique_ptr<StreamSink> sink) { streams.back()->sink = std::move(sink); }

void StreamedCamera::record(Recorder* writer, std::uint16_t firstStream) {
    recorder = writer;
    firstIndex = firstStream;
}

void StreamedCamera::start() {
    try {
        for (std::size_t index = 0; index < streams.size(); ++index)
            startStream(index);
    } catch (const Failure& failure) {
        fail(failure);
    }
}

void StreamedCamera::startStream(std::size_t index) {
    Stream& stream = *streams[index];
    stream.source->start();
    const auto number = static_cast<std::uint16_t>(firstIndex + index);
    const auto take = [this, &stream, number](const std::uint8_t* data, std::size_t size,
                                              std::int64_t micros) {
        try {
            if (recorder != nullptr)
                recorder->add(
                    number, Frame(stream.info, {reinterpret_cast<const std::byte*>(data), size}, 0, micros));
            const auto gap = static_cast<std::int64_t>(static_cast<std::uint64_t>(micros) -
                                                       static_cast<std::uint64_t>(stream.taken));
            if (finite && gap > absenceMicros)
                stream.sink->resume(); // the camera was away when this was recorded
            stream.taken = micros;
            return stream.sink->take(data, size, micros);
        } catch (const FileFailure&) {
            cannotWrite = true;
            throw;
        }
    };
    stream.reader = std::make_unique<StreamReader>(*stream.source, take, wake);
    stream.since = Utils::Clock::nowMicros();
    stream.reader->start();
}

void StreamedCamera::look() {
    if (condition == State::Unplugged)
        lookForReturn();
    if (condition != State::Streaming)
        return;
    try {
        for (const auto& stream : streams)
            watchStream(*stream);
    } catch (const Failure& failure) {
        if (failure.code() == Failure::NoDevice)
            unplug(failure);
        else
            fail(failure);
        return;
    }
    if (std::all_of(streams.begin(), streams.end(), [](const auto& stream) { return stream->ended; })) {
        condition = State::Done;
        closeStreams();
    }
}

void StreamedCamera::watchStream(Stream& stream) {
    if (stream.ended)
        return;
    if (!stream.reader->finished()) {
        const std::uint64_t units = stream.units();
        if (units != std::exchange(stream.seen, units))
            stream.since = Utils::Clock::nowMicros();
        if (Utils::Clock::nowMicros() - stream.since > stallMicros)
            throw Failure(Failure::TimedOut, Format("nothing came from % for % s; % frames had come") %
                                                 stream.source->label() % (stallMicros / 1'000'000) % units);
        return;
    }
    stream.reader->join();
    stream.reader->rethrow();
    if (!stream.sink->full() && !finite)
        throw Failure(Failure::Failed, Format("% ended its stream after % units, before all had come") %
                                           stream.source->label() % stream.units());
    stream.ended = true;
}

void StreamedCamera::removed(const NodeEvent& node) {
    for (const auto& stream : streams) {
        if (!sameNode(stream->description.node, node))
            continue;
        stream->present = false;
        if (condition == State::Streaming && !stream->ended)
            unplug(
                Failure(Failure::NoDevice, Format("% was unplugged after % units") % name % stream->units()));
    }
}

void StreamedCamera::arrived(const NodeEvent& node) {
    for (const auto& stream : streams) {
        if (sameNode(stream->description.node, node)) {
            stream->present = true;
            stream->description.node = node;
        }
    }
    if (condition == State::Unplugged && present())
        plugIn();
}

/// A camera that is put back at once may be back before the enumerator misses it: then no arrival is told.
void StreamedCamera::lookForReturn() {
    if (present() && Utils::Clock::nowMicros() - triedAt >= retryMicros)
        plugIn();
}

bool StreamedCamera::present() const {
    return std::all_of(streams.begin(), streams.end(), [](const auto& stream) { return stream->present; });
}

/// What the device says while it is being taken apart is no news: it is gone.
void StreamedCamera::unplug(const Failure& why) {
    trouble.emplace(why);
    awaySince = Utils::Clock::nowMicros();
    leave();
}

void StreamedCamera::leave() {
    condition = State::Unplugged;
    triedAt = Utils::Clock::nowMicros();
    stopStreams();
    for (const auto& stream : streams) {
        if (!leftBehind)
            stream->source.reset();
    }
    if (leftBehind)
        condition = State::Failed;
}

/// A camera that cannot be opened again stays away, since the time at which it went: another try may do better.
void StreamedCamera::plugIn() {
    try {
        for (std::size_t index = 0; index < streams.size(); ++index) {
            Stream& stream = *streams[index];
            if (stream.ended)
                continue;
            stream.source = opener(stream.description.node);
            if (stream.source->description().mode != stream.description.mode)
                throw Failure(Failure::Failed, name + " came back in another mode");
            stream.sink->resume();
            startStream(index);
        }
        condition = State::Streaming;
        trouble.reset();
        ++absences;
    } catch (const Failure& failure) {
        if (failure.code() != Failure::NoDevice)
            trouble.emplace(failure);
        leave();
    }
}

void StreamedCamera::fail(const Failure& failure) {
    condition = State::Failed;
    if (!trouble)
        trouble.emplace(failure);
    stopStreams();
}

void StreamedCamera::interrupt() {
    if (condition != State::Streaming)
        return;
    condition = State::Done;
    closeStreams();
}

/// Stops and closes; a device that fails in this makes the camera fail.
void StreamedCamera::closeStreams() {
    stopStreams();
    try {
        for (const auto& stream : streams) {
            if (stream->source && !leftBehind)
                stream->source->close();
        }
    } catch (const Failure& failure) {
        if (!trouble)
            trouble.emplace(failure);
    }
    if (trouble)
        condition = State::Failed;
}

/// Wakes the readers and waits for them. The first failure becomes the camera's.
void StreamedCamera::stopStreams() {
    for (const auto& stream : streams) {
        try {
            if (stream->source)
                stream->source->stop();
        } catch (const Failure& failure) {
            if (!trouble)
                trouble.emplace(failure);
        }
    }
    for (const auto& stream : streams)
        letGo(*stream);
}

/// A thread that sits inside a device cannot be ended and must not outlive what it uses, so both are left.
void StreamedCamera::letGo(Stream& stream) {
    if (!stream.reader)
        return;
    const std::int64_t end = Utils::Clock::nowMicros() + letGoMicros;
    while (!stream.reader->finished()) {
        if (Utils::Clock::nowMicros() > end) {
            leftBehind = true;
            trouble.emplace(Failure::TimedOut, Format("% does not return from reading; % frames had come") %
                                                   stream.source->label() % stream.units());
            return;
        }
        wake.timedWait(letGoLookMilliseconds);
    }
    stream.reader->join();
    stream.before = stream.units();
    stream.reader.reset();
}

/// What a recording holds before the place where it breaks off is kept; half a stream of a camera is not.
void StreamedCamera::finish() {
    if (condition == State::Unplugged) {
        const Failure why = *trouble;
        trouble.emplace(why.code(), std::string(why.what()) + " and did not come back");
    }
    if (condition != State::Done)
        condition = State::Failed;
    const bool keep = condition == State::Done || finite || cannotWrite;
    bool isKept = false;
    for (const auto& stream : streams) {
        try {
            if (keep && stream->sink) {
                stream->sink->commit();
                isKept = true;
            }
        } catch (const Failure& failure) {
            if (!cannotWrite) // else it has been told which file was the first
                trouble.emplace(failure);
            condition = State::Failed;
        }
    }
    if (cannotWrite && isKept && trouble) {
        const Failure why = *trouble;
        trouble.emplace(why.code(), std::string(why.what()) + "; what came whole before it is kept");
    }
    for (const auto& stream : streams) {
        if (condition == State::Failed && stream->sink)
            stream->sink->discard();
    }
}

void StreamedCamera::rescue() {
    const bool keep = condition == State::Streaming || condition == State::Done;
    for (const auto& stream : streams) {
        if (stream->reader)
            stream->reader->halt();
        if (!stream->sink)
            continue;
        if (keep && stream->units() != 0)
            stream->sink->commit();
        else
            stream->sink->discard();
    }
}

double StreamedCamera::awaySeconds() const {
    return static_cast<double>(Utils::Clock::nowMicros() - awaySince) / 1e6;
}

std::uint64_t StreamedCamera::progress() const { return streams.empty() ? 0 : streams.front()->units(); }

void StreamedCamera::print(std::ostream& out) const {
    for (const auto& stream : streams) {
        const NodeEvent& node = stream->description.node;
        out << "stream   " << printable(node.name) << (node.serialNumber.empty() ? "" : " ")
            << printable(node.serialNumber) << ", " << stream->description.modeName() << '\n';
        if (condition == State::Failed)
            out << "failed   " << trouble->what() << '\n';
        else
            stream->sink->print(out);
        if (absences != 0)
            out << "absent   " << absences << (absences == 1 ? " time\n" : " times\n");
    }
}

void StreamedCamera::fill(Json& list) const {
    for (const auto& stream : streams) {
        const NodeEvent& node = stream->description.node;
        Json json{{"camera", identity},
                  {"name", node.name},
                  {"kind", nodeTypeName(node.nodeType)},
                  {"mode", stream->description.modeName()},
                  {"absences", absences}};
        if (condition == State::Failed)
            json["failure"] = trouble->what();
        else
            stream->sink->fill(json);
        list.push_back(std::move(json));
    }
}

} // namespace Zentara::Tool
