#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/host/recording.h>
#include <zentara/utils/signal.h>

#include "tools/zentara/interrupt.h"
#include "tools/zentara/streams/stream_wishes.h"
#include "tools/zentara/streams/streamed_camera.h"

namespace Zentara::Tool {

/// One run of `zentara stream`: opens the cameras, streams until enough has come from each, and completes the files.
/// Of a camera that fails no file is left; after Ctrl-C the files hold what had come. Bound.
class StreamSession final {
public:
    StreamSession(const StreamWishes& wanted, Console& target) : wishes(wanted), console(target) {}
    StreamSession(const StreamSession&) = delete;
    StreamSession& operator=(const StreamSession&) = delete;

    /// Failures of single cameras are told on the console's `err`.
    /// \throws Failure when nothing came of any camera
    void run();

    /// Done, the code of the first camera that failed, or interrupted.
    [[nodiscard]] ExitCode result() const;
    /// Whether a call sits inside a device and cannot be ended: the process must end without taking the session apart.
    [[nodiscard]] bool isStuck() const;
    /// How many frames the first camera has delivered.
    [[nodiscard]] std::uint64_t progress() const;
    void print(std::ostream& out) const;
    /// Lets go of what finds cameras, which may hang. A failure is told and ends nothing.
    void close();
    [[nodiscard]] Json json() const;

private:
    using Opener = std::function<Camera(const CameraInfo& who)>;

    void openAll();
    void openCameras(const std::vector<CameraInfo>& chosen, const Opener& open);
    void openCamera(const CameraInfo& who, const Opener& open);
    [[nodiscard]] StreamOptions howToStream(Kind kind) const;
    void addStream(StreamedCamera& camera, Stream opened);
    void addFiles(StreamTask& task, std::uint64_t most);
    void expectCloud(StreamTask& task);
    [[nodiscard]] std::string fileFor(const CameraInfo& camera, const std::string& path);
    void checkKinds() const;
    void checkInterrupt() const;
    void startRecording();
    void supervise();
    void look(StreamedCamera& camera);
    [[nodiscard]] bool anythingToWaitFor() const;
    void finish();
    void rescue();
    void showProgress(bool last);
    [[nodiscard]] std::uint64_t framesWanted() const;

    const StreamWishes wishes;
    Console& console;
    InterruptWatch interrupt; ///< to the end, so that no part of a file is left behind
    const std::shared_ptr<Utils::Threading::Signal> wake = std::make_shared<Utils::Threading::Signal>();
    bool isStopped = false;
    bool several = false;                ///< cameras
    std::set<Kind> kinds;                ///< of all streams that were to be opened
    std::set<std::string> places;        ///< of all files
    std::optional<Cameras> bus;          ///< none for a recording
    std::shared_ptr<CloudMaker> cloud;   ///< of the camera that is being opened; may be null
    std::unique_ptr<Recorder> recording; ///< the cameras write into it
    std::vector<std::unique_ptr<StreamedCamera>> cameras;
};

} // namespace Zentara::Tool
