#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <zentara/host/recording.h>
#include <zentara/utils/signal.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/streams/stream_sink.h"
#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Tool {

/// The streams of one camera, from opening it to completing the files. Cameras know nothing of each other: what
/// befalls one ends its own streams only. Bound to the thread that made it.
class StreamedCamera final {
public:
    enum class State {
        Streaming,
        Unplugged, ///< may come back
        Done,
        Failed,
    };
    using Open = std::function<std::unique_ptr<StreamSource>(const NodeEvent& node)>;

    /// \param who the camera is, for JSON. \param opener opens a node's stream, now or when the camera is back.
    /// \param ended set when a reader ends; must outlive the camera.
    /// \param finite whether a stream ends by itself, as a recorded one does
    StreamedCamera(Json who, Open opener, Utils::Threading::Signal& ended, bool finite);
    ~StreamedCamera();
    StreamedCamera(const StreamedCamera&) = delete;
    StreamedCamera& operator=(const StreamedCamera&) = delete;

    /// Opens a stream. \return its description \throws Failure
    const StreamDescription& open(const NodeEvent& node);

    /// Says where the stream that was opened last goes; called once for each, before start().
    void deliverTo(std::unique_ptr<StreamSink> sink);

    /// All streams of all cameras are numbered; this camera's from `firstStream` on.
    void record(Recorder* writer, std::uint16_t firstStream);

    /// Starts the streams. A failure shows in the state.
    void start();

    /// Sees to what has happened meanwhile: a failure, an end, a device that has gone silent.
    void look();

    /// What the enumerator tells; nodes of other cameras are no matter.
    void removed(const NodeEvent& node);
    void arrived(const NodeEvent& node);

    /// Ends the streams where they stand.
    void interrupt();

    /// Completes the files, or removes them when the camera failed. A camera that is still away has failed.
    void finish();

    /// While the thread that made the camera hangs: its readers take nothing more, and its files are completed if they
    /// hold what had come. \throws Failure
    void rescue();

    /// Takes the failure as the camera's, if it has none yet, and ends its streams.
    void fail(const Failure& failure);

    [[nodiscard]] State state() const noexcept { return condition; }
    /// What it failed with.
    [[nodiscard]] const Failure& failure() const { return *trouble; }
    /// How long it has been away, in seconds.
    [[nodiscard]] double awaySeconds() const;
    /// Whether a reader's thread sits in the device and cannot be ended.
    /// Whether it failed because a file could not be written: what is whole in its files is kept then.
    [[nodiscard]] bool unwritable() const noexcept { return cannotWrite; }

    [[nodiscard]] bool stuck() const noexcept { return leftBehind; }
    /// How many units its first stream has delivered.
    [[nodiscard]] std::uint64_t progress() const;
    [[nodiscard]] std::size_t size() const noexcept { return streams.size(); }
    [[nodiscard]] const std::string& label() const noexcept { return name; }

    void print(std::ostream& out) const;
    /// Appends an object for each stream.
    void fill(Json& list) const;

private:
    struct Stream;

    void startStream(std::size_t index);
    void watchStream(Stream& stream);
    void stopStreams();
    void letGo(Stream& stream);
    void closeStreams();
    void unplug(const Failure& why);
    void leave();
    void lookForReturn();
    void plugIn();
    [[nodiscard]] bool present() const;

    const Json identity;
    const Open opener;
    Utils::Threading::Signal& wake;
    const bool finite;
    std::string name;
    std::vector<std::unique_ptr<Stream>> streams;
    Recorder* recorder = nullptr;
    std::uint16_t firstIndex = 0;
    State condition = State::Streaming;
    std::optional<Failure> trouble;
    std::int64_t awaySince = 0;
    std::int64_t triedAt = 0; ///< when it was last found to be away
    unsigned absences = 0;
    bool leftBehind = false;
    std::atomic<bool> cannotWrite = false; ///< a reader's thread tells
};

} // namespace Zentara::Tool
