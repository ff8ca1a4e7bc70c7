#pragma once

#include <atomic>

#include <zentara/utils/signal.h>

#include "tools/zentara/streams/recording_reader.h"
#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Tool {

/// A recorded stream, delivered at the pace at which it was recorded.
class PlayedSource final : public StreamSource {
public:
    /// \throws what RecordingReader throws
    PlayedSource(const std::string& path, std::uint16_t stream);

    [[nodiscard]] const StreamDescription& description() const override;
    [[nodiscard]] std::string label() const override { return name; }
    void start() override;
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override;
    void stop() override;
    void close() override { stop(); }

private:
    [[nodiscard]] bool waitUntilDue(std::int64_t micros);

    RecordingReader reader;
    const std::uint16_t index;
    const std::string name;
    RecordedFrame frame;
    bool waiting = false; ///< `frame` has been read and not delivered
    bool begun = false;
    std::uint64_t offset = 0; ///< from the recording's clock to this one
    std::atomic<bool> stopped{false};
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Tool
