#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tools/zentara/audio_recorder.h"
#include "tools/zentara/depth_recorder.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// What the user wants of a stream. Empty paths are for files that are not wanted.
struct StreamOptions {
    std::uint64_t frames = 60;
    std::string png;
    std::string raw;
    std::string wav;
    bool direct = false;
    bool json = false;
};

/// One run of `zentara stream`: makes the devices through their proxies, streams until enough has come, closes the
/// devices and completes the files. After a failure no file is left; after Ctrl-C the files hold what had come.
class StreamSession final {
public:
    StreamSession(const StreamOptions& wanted, Console& target);
    ~StreamSession();
    StreamSession(const StreamSession&) = delete;
    StreamSession& operator=(const StreamSession&) = delete;

    /// \throws ToolFailure; a device that neither delivers nor lets go of its reader ends the process with exit
    /// code 7, for its thread could not be ended otherwise.
    void run();

    [[nodiscard]] bool interrupted() const noexcept { return stopped; }
    [[nodiscard]] const std::string& videoName() const noexcept { return videoLabel; }
    [[nodiscard]] const std::string& audioName() const noexcept { return audioLabel; }
    [[nodiscard]] const DepthRecorder& depth() const noexcept { return depthRecorder; }
    /// Null when no sound was wanted.
    [[nodiscard]] const AudioRecorder* audio() const noexcept { return audioRecorder.get(); }
    /// Whether a frame came to make a picture from.
    [[nodiscard]] bool hasPicture() const noexcept { return !depthRecorder.last().empty(); }

private:
    struct Devices;

    void openVideo();
    void openAudio();
    void supervise();
    void stopStreams();
    void waitForReaders();
    [[noreturn]] void abandon(const std::string& device);
    void completeFiles();
    void showProgress();

    const StreamOptions options;
    Console& console;
    bool stopped = false;
    std::string stalled; ///< the device from which nothing came any more; empty while all is well
    std::string videoLabel;
    std::string audioLabel;
    DepthRecorder depthRecorder;
    std::unique_ptr<AudioRecorder> audioRecorder;
    std::unique_ptr<PendingFile> picture;
    std::unique_ptr<Devices> devices;
};

} // namespace Zentara::Tool
