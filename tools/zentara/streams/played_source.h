#pragma once

#include <string>

#include <zentara/host/recording.h>

#include "host/recordings/played_source.h"
#include "tools/zentara/streams/recorded_stream.h"
#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Tool {

/// A recorded stream, delivered at the pace at which it was recorded.
class PlayedSource final : public StreamSource {
public:
    /// \throws Failure as for a recording that cannot be read
    PlayedSource(const std::string& path, std::size_t stream)
        : played(playbackOf(path, stream), stream), about(playedStream(played.info())) {}

    [[nodiscard]] const Host::StreamDescription& description() const override { return about; }
    [[nodiscard]] std::string label() const override { return played.label(); }
    void start() override { played.start(); }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override {
        return played.read(buffer, size, micros, length);
    }
    void stop() override { played.stop(); }
    void close() override { played.close(); }

private:
    static std::shared_ptr<Host::Playback> playbackOf(const std::string& path, std::size_t stream) {
        const Host::Recording recording(path);
        return std::make_shared<Host::Playback>(path, recording.streams(), std::vector<std::size_t>{stream},
                                                1);
    }

    Host::PlayedSource played;
    const Host::StreamDescription about;
};

} // namespace Zentara::Tool
