#include "tools/zentara/streams/played_source.h"

#include <algorithm>
#include <cstring>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

namespace Zentara::Tool {
namespace {

constexpr std::int64_t longestGapMicros = 1'000'000;

} // namespace

PlayedSource::PlayedSource(const std::string& path, std::uint16_t stream)
    : reader(path), index(stream),
      name(Utils::Format("%, stream % of '%'") % nodeTypeName(reader.streams().at(stream).node.nodeType) %
           stream % path) {
    reader.select(stream);
}

const StreamDescription& PlayedSource::description() const { return reader.streams()[index]; }

void PlayedSource::start() { stopped = false; }

ReadBufferStatus PlayedSource::read(void* buffer, int size, std::int64_t* micros, int* length) {
    if (!waiting && (stopped || !reader.next(frame)))
        return ReadBufferStatus_NOT_STREAMING;
    waiting = true;
    *length = static_cast<int>(frame.bytes.size());
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    if (!waitUntilDue(frame.micros))
        return ReadBufferStatus_NOT_STREAMING;
    std::copy(frame.bytes.begin(), frame.bytes.end(), static_cast<std::uint8_t*>(buffer));
    *micros = frame.micros;
    waiting = false;
    return ReadBufferStatus_OK;
}

void PlayedSource::stop() {
    stopped = true;
    wake.set();
}

/// False when the stream was stopped meanwhile. A gap in the recording, as when the camera was pulled out, is cut
/// short. The times are the file's and may be anything, so the sums may wrap.
bool PlayedSource::waitUntilDue(std::int64_t micros) {
    const auto recorded = static_cast<std::uint64_t>(micros);
    const auto now = static_cast<std::uint64_t>(Utils::Clock::nowMicros());
    const auto early = static_cast<std::int64_t>(recorded + offset - now);
    if (!begun || early > longestGapMicros || early < -longestGapMicros)
        offset = now - recorded;
    else if (early > 0)
        wake.timedWait(static_cast<unsigned long>(early / 1000));
    begun = true;
    return !stopped;
}

} // namespace Zentara::Tool
