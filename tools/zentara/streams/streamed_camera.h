#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <zentara/host/camera.h>

#include "tools/zentara/streams/stream_task.h"

namespace Zentara::Tool {

/// The streams of one camera, from opening it to completing the files. Cameras know nothing of each other: what
/// befalls one ends its own streams only.
///
///     Streaming <-- a stream of it is Away, and back --> Away
///       |   |                                              | finish()
///       |   +-- a stream, or closing it, fails --> Failed <+
///       +-- all has come, end() --> Done
class StreamedCamera final {
public:
    enum class State { Streaming, Away, Done, Failed };

    /// \param recorded whether what came before a failure is worth keeping
    StreamedCamera(CameraInfo who, bool recorded) : identity(std::move(who)), isRecorded(recorded) {}

    /// The camera that is closed when its streams have ended.
    void hold(Camera opened) { camera.emplace(std::move(opened)); }
    StreamTask& add(Stream opened, const CaptureRules& rules);

    /// Starts the streams. A failure shows in the state.
    void start();
    /// Takes what has come, and sees to what has happened.
    void look();
    /// Ends the streams where they stand.
    void end();
    /// Completes the files, or removes them when the camera failed. One that is still away has failed.
    void finish();
    /// The same on another thread, while that of the others hangs in a device. \throws Failure
    void rescue();
    /// Takes the failure as the camera's, if it has none yet, and ends its streams.
    void fail(const Failure& failure);

    [[nodiscard]] State state() const noexcept { return condition; }
    /// What it failed with, or why it is away.
    [[nodiscard]] const Failure& failure() const { return *trouble; }
    [[nodiscard]] double awaySeconds() const;
    /// Whether it failed because a file could not be written: what is whole in its files is kept then.
    [[nodiscard]] bool isUnwritable() const noexcept;
    /// Whether a call sits in the device, and cannot be ended.
    [[nodiscard]] bool isStuck() const;
    [[nodiscard]] const std::vector<std::unique_ptr<StreamTask>>& streams() const noexcept { return tasks; }

    void print(std::ostream& out) const;
    /// Appends an object for each stream.
    void fill(Json& list) const;

private:
    [[nodiscard]] std::optional<Failure> takeAll();
    void close();

    const CameraInfo identity;
    const bool isRecorded;
    std::optional<Camera> camera; ///< none when it could not be opened
    std::vector<std::unique_ptr<StreamTask>> tasks;
    State condition = State::Streaming;
    std::optional<Failure> trouble; ///< of one that is away or failed
    std::int64_t awaySince = 0;
};

} // namespace Zentara::Tool
