#include "host/recordings/played_source.h"

#include <algorithm>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/recordings/recording_format.h"

namespace Zentara::Host {
namespace {

constexpr std::int64_t second = 1'000'000;
constexpr std::size_t smallestBuffer = 4096;

/// A gap of more than a second is cut short; in a stream with few frames a second, one of more than two frames.
RecordedTimes timesOf(const Playback& camera) {
    std::int64_t longest = second;
    std::vector<std::int64_t> frameTimes(camera.all.size());
    for (const std::size_t stream : camera.streams) {
        const Mode& mode = camera.all[stream].mode;
        if (mode.kind == Kind::Audio)
            continue;
        frameTimes[stream] = second / std::max<std::int64_t>(1, mode.rate);
        longest = std::max(longest, 2 * frameTimes[stream]);
    }
    return {frameTimes, longest};
}

} // namespace

PlayedSource::PlayedSource(std::shared_ptr<Playback> camera, std::size_t stream)
    : shared(std::move(camera)), index(stream), reader(shared->file),
      name(Utils::Format("%, stream % of '%'") % kindName(shared->all.at(stream).mode.kind) % stream %
           shared->file),
      times(timesOf(*shared)) {
    const StreamInfo& known = shared->all[index];
    if (reader.streams().size() != shared->all.size() || info().mode != known.mode ||
        info().camera != known.camera)
        throw Failure(Failure::Failed, "recording '" + shared->file + "' has been replaced by another one");
}

std::size_t PlayedSource::usualBytes() const {
    const Mode& mode = info().mode;
    return std::max(smallestBuffer, std::size_t{mode.width} * mode.height * sizeof(std::uint16_t));
}

void PlayedSource::start() {
    isStopped = false;
    if (!isPlaying.exchange(true))
        begun = shared->clock.join();
}

ReadBufferStatus PlayedSource::read(void* buffer, int size, std::int64_t* micros, int* length) {
    if (!findNext()) {
        leave(); // who plays it again begins anew
        return ReadBufferStatus_NOT_STREAMING;
    }
    *length = static_cast<int>(waiting->length);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    if (!waitUntilDue())
        return ReadBufferStatus_NOT_STREAMING;
    reader.read(buffer);
    *micros = waiting->micros;
    delivered.isFirstAfterReturn = (waiting->flags & RecordingFormat::Flag_AFTER_RETURN) != 0;
    delivered.takenMicros = begun + due;
    delivered.temperatures = reader.temperatures(static_cast<std::uint16_t>(index));
    waiting.reset();
    return ReadBufferStatus_OK;
}

/// False at the end of the recording, and when the stream was stopped.
bool PlayedSource::findNext() {
    while (!waiting && !isStopped) {
        const std::optional<FrameHead> head = reader.next();
        if (!head)
            return false;
        if (std::find(shared->streams.begin(), shared->streams.end(), head->stream) == shared->streams.end())
            continue;
        const std::int64_t time = times.dueAt(head->stream, head->micros);
        if (head->stream == index) {
            waiting = head;
            due = time;
        }
    }
    return !isStopped;
}

/// False when the stream was stopped meanwhile.
bool PlayedSource::waitUntilDue() {
    constexpr std::int64_t longestWait = 3600 * second;
    for (;;) {
        const std::int64_t left = shared->clock.left(due, isInTime);
        isInTime = isInTime || left > -PlayClock::latenessMicros;
        const std::int64_t milliseconds = std::min(left, longestWait) / 1000;
        if (isStopped || milliseconds <= 0)
            return !isStopped;
        wake.timedWait(static_cast<unsigned long>(milliseconds));
    }
}

void PlayedSource::stop() {
    isStopped = true;
    wake.set();
    leave();
}

void PlayedSource::leave() {
    if (isPlaying.exchange(false))
        shared->clock.leave();
}

} // namespace Zentara::Host
