#include "tools/zentara/stream_session.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include <zentara/depth_configuration.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/smart_ptr.h>

#include "tools/zentara/device_choice.h"
#include "tools/zentara/guid_text.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/png.h"
#include "tools/zentara/stream_reader.h"

namespace Zentara::Tool {
namespace {

constexpr unsigned long lookMilliseconds = 50;
constexpr std::int64_t stallMicros = 5'000'000;
constexpr std::int64_t letGoMicros = 2'000'000;
constexpr std::size_t videoUnitBytes = 1 << 20;
constexpr std::size_t audioUnitBytes = 1 << 16;
constexpr double pictureTrim = 0.005;
constexpr float inputLevel = 0.5F;

std::int64_t nowMicros() {
    std::int64_t micros = 0;
    Utils::Clock::getTime(micros);
    return micros;
}

/// Notices when a reader gets nothing any more.
class StallWatch {
public:
    explicit StallWatch(const StreamReader& watched) : reader(watched), since(nowMicros()) {}

    [[nodiscard]] bool stalled() {
        const std::uint64_t progress = reader.progress();
        if (progress != seen || reader.finished()) {
            seen = progress;
            since = nowMicros();
        }
        return nowMicros() - since > stallMicros;
    }

private:
    const StreamReader& reader;
    std::uint64_t seen = 0;
    std::int64_t since;
};

} // namespace

/// In an order that takes them apart safely: a reader's thread ends before the device that it reads goes.
struct StreamSession::Devices {
    Utils::Threading::Signal wake;
    std::unique_ptr<IO::VideoDeviceProxy> video;
    std::unique_ptr<IO::AudioDeviceProxy> audio;
    std::vector<std::unique_ptr<StreamReader>> readers;

    [[nodiscard]] bool allFinished() const {
        return std::all_of(readers.begin(), readers.end(),
                           [](const auto& reader) { return reader->finished(); });
    }
};

StreamSession::StreamSession(const StreamOptions& wanted, Console& target)
    : options(wanted), console(target), depthRecorder(wanted.frames, wanted.raw),
      devices(std::make_unique<Devices>()) {
    if (!options.png.empty())
        picture = std::make_unique<PendingFile>(options.png);
}

StreamSession::~StreamSession() = default;

void StreamSession::run() {
    openVideo();
    if (!options.wav.empty())
        openAudio();
    for (const auto& reader : devices->readers)
        reader->start();
    supervise();
    stopStreams();
    completeFiles();
}

void StreamSession::openVideo() {
    const GUID guid = chooseDevice(Core::ImplType_VIDEO_DEVICE, "video device", console.err);
    videoLabel = guidLabel(guid);
    attempt("create " + videoLabel,
            [&] { devices->video = std::make_unique<IO::VideoDeviceProxy>(guid, !options.direct); });
    attempt("open " + videoLabel, [&] { devices->video->open(); });
    const auto mode = Utils::makeRefcounted<DepthConfiguration>(
        FrameFormat_QVGA, DepthRecorder::framesPerSecond, DepthNode::CameraMode_0, false, std::int16_t{0});
    attempt("stream " + mode->getName() + " from " + videoLabel,
            [&] { devices->video->enableStreaming(mode); });
    const auto take = [this](const std::uint8_t* data, std::size_t size, std::int64_t micros) {
        return depthRecorder.take(data, size, micros);
    };
    devices->readers.push_back(
        std::make_unique<StreamReader>(videoLabel, *devices->video, videoUnitBytes, take, devices->wake));
}

void StreamSession::openAudio() {
    const GUID guid = chooseDevice(Core::ImplType_AUDIO_DEVICE, "audio device", console.err);
    audioLabel = guidLabel(guid);
    attempt("create " + audioLabel,
            [&] { devices->audio = std::make_unique<IO::AudioDeviceProxy>(guid, !options.direct); });
    attempt("open " + audioLabel, [&] { devices->audio->open(); });
    const auto mode = Utils::makeRefcounted<AudioConfiguration>();
    attempt("ask " + audioLabel + " for its mode", [&] { devices->audio->getDefaultConfiguration(mode); });
    // As much sound as the frames take time.
    const std::uint64_t wanted = options.frames *
                                 static_cast<std::uint64_t>(std::max(mode->getSampleRate(), 0)) /
                                 DepthRecorder::framesPerSecond;
    audioRecorder = std::make_unique<AudioRecorder>(options.wav, *mode, wanted);
    attempt("stream " + mode->getName() + " from " + audioLabel,
            [&] { devices->audio->enableStreaming(mode, inputLevel, false); });
    const auto take = [this](const std::uint8_t* data, std::size_t size, std::int64_t micros) {
        return audioRecorder->take(data, size, micros);
    };
    devices->readers.push_back(
        std::make_unique<StreamReader>(audioLabel, *devices->audio, audioUnitBytes, take, devices->wake));
}

/// Returns when all readers are done, one has failed, Ctrl-C was pressed or a device has stalled.
void StreamSession::supervise() {
    InterruptWatch watch;
    std::vector<StallWatch> stalls;
    for (const auto& reader : devices->readers)
        stalls.emplace_back(*reader);
    while (!devices->allFinished() && stalled.empty()) {
        devices->wake.timedWait(lookMilliseconds);
        showProgress();
        for (std::size_t index = 0; index < stalls.size(); ++index) {
            if (stalls[index].stalled())
                stalled = devices->readers[index]->name();
            if (devices->readers[index]->failed())
                return;
        }
        stopped = watch.interrupted();
        if (stopped)
            return;
    }
}

/// Ends the streams, which wakes the readers, and reports what went wrong: first what a reader met.
void StreamSession::stopStreams() {
    std::string trouble;
    const auto stop = [&](IO::AVDeviceProxy* proxy, const std::string& label) {
        try {
            if (proxy != nullptr)
                attempt("stop the stream of " + label, [&] { proxy->disableStreaming(false); });
        } catch (const ToolFailure& failure) {
            trouble = failure.what();
        }
    };
    stop(devices->video.get(), videoLabel);
    stop(devices->audio.get(), audioLabel);
    waitForReaders();
    for (const auto& reader : devices->readers)
        reader->rethrow();
    if (!stalled.empty())
        throw ToolFailure(ExitCode_TIMEOUT, Utils::Format("nothing came from % for % s; % frames had come") %
                                                stalled % (stallMicros / 1'000'000) % depthRecorder.frames());
    if (!trouble.empty())
        throw ToolFailure(ExitCode_FAILED, trouble);
    if (!stopped && depthRecorder.frames() < options.frames)
        throw ToolFailure(ExitCode_FAILED, Utils::Format("% ended its stream after % of % frames") %
                                               videoLabel % depthRecorder.frames() % options.frames);
    attempt("close " + videoLabel, [&] { devices->video->close(); });
    if (devices->audio)
        attempt("close " + audioLabel, [&] { devices->audio->close(); });
}

void StreamSession::waitForReaders() {
    const std::int64_t end = nowMicros() + letGoMicros;
    while (!devices->allFinished()) {
        if (nowMicros() > end)
            abandon(stalled.empty() ? videoLabel : stalled);
        devices->wake.timedWait(lookMilliseconds);
    }
    for (const auto& reader : devices->readers)
        reader->join();
}

/// A thread that sits inside a device cannot be ended and must not outlive what it uses: the process ends instead.
void StreamSession::abandon(const std::string& device) {
    depthRecorder.discard();
    if (audioRecorder)
        audioRecorder->discard();
    console.err << "zentara stream: " << device << " does not return from reading; " << depthRecorder.frames()
                << " frames had come\n"
                << std::flush;
    std::_Exit(ExitCode_TIMEOUT);
}

void StreamSession::completeFiles() {
    depthRecorder.commit();
    if (audioRecorder)
        audioRecorder->commit();
    if (!picture || !hasPicture())
        return;
    const auto& depth = depthRecorder.last();
    const DepthRange range = depthRange(depth.data(), depth.size(), pictureTrim);
    const std::string bytes =
        encodePng(colorize(depth.data(), depth.size(), range), DepthRecorder::width, DepthRecorder::height);
    attempt("write the picture", [&] { Utils::writeFile(picture->partPath(), bytes); });
    picture->commit();
}

void StreamSession::showProgress() {
    if (!console.showProgress)
        return;
    const std::uint64_t frames = devices->readers.front()->progress();
    console.err << '\r' << frames << " of " << options.frames << " frames" << std::flush;
    if (devices->allFinished())
        console.err << "\r\033[K" << std::flush;
}

} // namespace Zentara::Tool
