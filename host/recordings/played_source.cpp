#include "host/recordings/played_source.h"

#include <algorithm>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

constexpr std::int64_t longestGapMicros = 1'000'000;
constexpr std::size_t smallestBuffer = 4096;

} // namespace

PlayedSource::PlayedSource(const std::string& path, std::size_t stream, double times)
    : reader(path), index(stream), speed(times),
      name(Utils::Format("%, stream % of '%'") % kindName(reader.streams().at(stream).mode.kind) % stream %
           path) {}

std::size_t PlayedSource::usualBytes() const {
    const Mode& mode = info().mode;
    return std::max(smallestBuffer, std::size_t{mode.width} * mode.height * sizeof(std::uint16_t));
}

ReadBufferStatus PlayedSource::read(void* buffer, int size, std::int64_t* micros, int* length) {
    while (!waiting || waiting->stream != index) {
        waiting = stopped ? std::nullopt : reader.next();
        if (!waiting)
            return ReadBufferStatus_NOT_STREAMING;
    }
    *length = static_cast<int>(waiting->length);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    if (!waitUntilDue(waiting->micros))
        return ReadBufferStatus_NOT_STREAMING;
    reader.read(buffer);
    *micros = waiting->micros;
    waiting.reset();
    return ReadBufferStatus_OK;
}

SensorValueArray PlayedSource::temperatures() {
    return reader.temperatures(static_cast<std::uint16_t>(index));
}

void PlayedSource::stop() {
    stopped = true;
    wake.set();
}

/// False when the stream was stopped meanwhile. A gap in the recording, as when the camera was pulled out, is cut
/// short. The times are the file's and may be anything, so their differences may wrap.
bool PlayedSource::waitUntilDue(std::int64_t micros) {
    const std::int64_t now = Utils::Clock::nowMicros();
    const auto recorded = static_cast<std::int64_t>(static_cast<std::uint64_t>(micros) -
                                                    static_cast<std::uint64_t>(firstRecorded));
    const double early = static_cast<double>(recorded) / speed - static_cast<double>(now - firstPlayed);
    if (!begun || early > longestGapMicros || early < -longestGapMicros) {
        firstRecorded = micros;
        firstPlayed = now;
    } else if (early > 0) {
        wake.timedWait(static_cast<unsigned long>(early / 1000));
    }
    begun = true;
    return !stopped;
}

} // namespace Zentara::Host
