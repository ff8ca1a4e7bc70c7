#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/utils/signal.h>

#include "host/recordings/play_clock.h"
#include "host/recordings/recording_reader.h"
#include "host/streams/stream_source.h"

namespace Zentara::Host {

/// One camera of a recording while it plays: what its streams share.
struct Playback {
    /// \param every the streams of the file \param own the indices of those that are the camera's
    Playback(std::string path, std::vector<StreamInfo> every, std::vector<std::size_t> own, double speed)
        : file(std::move(path)), all(std::move(every)), streams(std::move(own)), clock(speed) {}

    const std::string file;
    const std::vector<StreamInfo> all;
    const std::vector<std::size_t> streams;
    PlayClock clock;
};

/// A recorded stream, delivered at the pace of its camera's clock. It reads the file for itself.
class PlayedSource final : public StreamSource {
public:
    /// \throws what RecordingReader throws, and Failure when the file is another one by now
    PlayedSource(std::shared_ptr<Playback> camera, std::size_t stream);
    ~PlayedSource() override { leave(); }

    [[nodiscard]] const StreamInfo& info() const override { return reader.streams()[index]; }
    [[nodiscard]] std::string label() const override { return name; }
    [[nodiscard]] std::size_t usualBytes() const override;
    void start() override;
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override;
    [[nodiscard]] const Recorded* recorded() const override { return &delivered; }
    void stop() override;
    void close() override { stop(); }

private:
    [[nodiscard]] bool findNext();
    [[nodiscard]] bool waitUntilDue();
    void leave();

    const std::shared_ptr<Playback> shared;
    const std::size_t index;
    RecordingReader reader;
    const std::string name;

    std::int64_t begun = 0; ///< when the camera's clock began, on the host's; set before anything is read

    // The reading thread's.
    RecordedTimes times;
    std::optional<FrameHead> waiting; ///< has been found and not delivered
    std::int64_t due = 0;             ///< when that is due
    bool isInTime = false;            ///< one has been delivered when it was due, or soon after
    Recorded delivered;

    std::atomic<bool> isPlaying{false}; ///< takes part in the clock
    std::atomic<bool> isStopped{false};
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Host
