#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <zentara/host/camera.h>
#include <zentara/host/capture.h>
#include <zentara/host/export.h>
#include <zentara/host/failure.h>

namespace Zentara::Host {

/// What is captured of one camera, from opening it to completing the files. Several cameras know nothing of each other:
/// what befalls one ends its own captures only, and leaves no file of it unless that is worth keeping.
///
///     Streaming <-- a stream of it is Away, and back --> Away
///       |   |                                              | finish()
///       |   +-- a capture, or closing it, fails --> Failed <+
///       +-- all has come, end() --> Done
///
/// No operation but rescue() throws: a failure shows in the state. Separate; but while look() hangs, another thread may
/// rescue() what has come, if nothing else follows.
class ZENTARA_HOST_API CameraCapture {
public:
    enum class State { Streaming, Away, Done, Failed };

    /// \param recorded that it is a recording: what comes before the place where it breaks off is kept then
    explicit CameraCapture(bool recorded = false);
    ~CameraCapture();
    CameraCapture(const CameraCapture&) = delete;
    CameraCapture& operator=(const CameraCapture&) = delete;

    /// The camera that is closed when its captures have ended.
    void hold(Camera opened);
    /// Before start(). \param capture of a stream of that camera, not null
    void add(std::unique_ptr<Capture> capture);

    /// Starts the streams.
    void start();
    /// Takes what has come, and sees to what has happened. A stream that is over is stopped at once.
    void look();
    /// Ends the streams where they stand, unless one is away.
    void end();
    /// Completes the files, or removes them when the camera failed. One that is still away has failed.
    void finish();
    /// In place of finish(), on another thread, while that of the others hangs in a device. \throws Failure
    void rescue();
    /// Takes the failure as the camera's, if it has none yet, and ends its streams.
    void fail(const Failure& failure);

    [[nodiscard]] State state() const noexcept { return condition; }
    /// What it failed with, or why it is away; in these two states only.
    [[nodiscard]] const Failure& failure() const { return *trouble; }
    /// Since it went.
    [[nodiscard]] double awaySeconds() const;
    /// Whether it failed because a file could not be written: what is whole in its files is kept then.
    [[nodiscard]] bool isUnwritable() const noexcept;
    /// Whether a call sits in the device, and cannot be ended.
    [[nodiscard]] bool isStuck() const;
    [[nodiscard]] const std::vector<std::unique_ptr<Capture>>& captures() const noexcept { return taken; }

private:
    [[nodiscard]] std::optional<Failure> takeAll();
    void close();

    const bool isRecorded;
    std::optional<Camera> camera; ///< none when it could not be opened
    std::vector<std::unique_ptr<Capture>> taken;
    State condition = State::Streaming;
    std::optional<Failure> trouble; ///< of one that is away or failed
    std::int64_t awaySince = 0;     ///< microseconds of the monotonic clock
};

} // namespace Zentara::Host
