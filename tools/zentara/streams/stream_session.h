#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <zentara/host/stream_info.h>
#include <zentara/node_event.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/mode_choice.h"
#include "tools/zentara/streams/streamed_camera.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// What the user wants of a stream. Empty paths are for files that are not wanted.
struct StreamOptions {
    std::uint64_t frames = 0; ///< 0: not said
    std::vector<std::string> cameras;
    ModeChoice modes;
    bool all = false;
    bool color = false;
    bool audio = false;
    std::string png;
    std::string raw;
    std::string ply;
    std::string cloudPng;
    std::string colorPng;
    std::string wav;
    std::string record;
    std::string play;
    double waitSeconds = 0;
    bool direct = false;
    std::vector<std::string> plugins; ///< the bare devices that are meant
    bool json = false;
};

/// One run of `zentara stream`: opens the cameras, streams until enough has come from each, and completes the files.
/// Of a camera that fails no file is left; after Ctrl-C the files hold what had come.
class StreamSession final {
public:
    StreamSession(const StreamOptions& wanted, Console& target);
    ~StreamSession();
    StreamSession(const StreamSession&) = delete;
    StreamSession& operator=(const StreamSession&) = delete;

    /// Failures of single cameras are told on the console's `err`.
    /// \throws Failure when nothing came of any camera
    void run();

    /// Done, the code of the first camera that failed, or interrupted.
    [[nodiscard]] ExitCode result() const;

    /// Whether a thread sits inside a device and cannot be ended: the process must end without taking the session
    /// apart.
    [[nodiscard]] bool stuck() const;

    /// How many frames the first camera has delivered.
    [[nodiscard]] std::uint64_t progress() const;

    void print(std::ostream& out) const;
    [[nodiscard]] Json json() const;

private:
    struct Parts;

    void openDevices();
    void openRecording();
    void openCameras();
    void openCamera(const CameraEntry& entry, const StreamedCamera::Open& open, bool finite);
    void openStreams(StreamedCamera& camera, const std::vector<NodeEvent>& nodes);
    void missKind(NodeType type, const CameraEntry& camera) const;
    void checkKinds() const;
    [[nodiscard]] std::unique_ptr<StreamSink> makeSink(const StreamDescription& stream,
                                                       const StreamInfo& info, int framesPerSecond);
    void askForInfos(const CameraEntry& entry);
    [[nodiscard]] StreamInfo infoOf(const StreamDescription& stream) const;
    [[nodiscard]] std::uint64_t framesWanted() const;
    [[nodiscard]] std::uint64_t samplesWanted(int samplesPerSecond, int framesPerSecond) const;
    [[nodiscard]] bool wants(NodeType type) const;
    [[nodiscard]] std::string fileFor(const StreamDescription& stream, const std::string& path);
    void checkInterrupt() const;
    void startRecording();
    void supervise();
    void seeToEvents();
    void observe(const StreamedCamera& camera, const std::function<void()>& step);
    [[nodiscard]] bool anythingToWaitFor() const;
    void finish();
    void rescue();
    void showProgress(bool last);

    const StreamOptions options;
    Console& console;
    bool stopped = false;
    bool several = false;
    std::unique_ptr<Parts> parts;
};

} // namespace Zentara::Tool
