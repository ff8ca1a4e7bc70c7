#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include <zentara/utils/signal.h>

#include "host/recordings/recording_reader.h"
#include "host/streams/stream_source.h"

namespace Zentara::Host {

/// A recorded stream, delivered at the pace at which it was recorded, or at a multiple of it.
class PlayedSource final : public StreamSource {
public:
    /// \throws what RecordingReader throws
    PlayedSource(const std::string& path, std::size_t stream, double speed);

    [[nodiscard]] const StreamInfo& info() const override { return reader.streams()[index]; }
    [[nodiscard]] std::string label() const override { return name; }
    [[nodiscard]] std::size_t usualBytes() const override;
    void start() override { stopped = false; }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override;
    [[nodiscard]] SensorValueArray temperatures() override;
    void stop() override;
    void close() override { stop(); }

private:
    [[nodiscard]] bool waitUntilDue(std::int64_t micros);

    RecordingReader reader;
    const std::size_t index;
    const double speed;
    const std::string name;
    std::optional<FrameHead> waiting; ///< has been found and not delivered
    bool begun = false;
    std::int64_t firstRecorded = 0; ///< since the last gap: the recording's clock
    std::int64_t firstPlayed = 0;   ///< and this one, when that frame was delivered
    std::atomic<bool> stopped{false};
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Host
