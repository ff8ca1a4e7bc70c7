#include "host/recordings/played_camera.h"

#include <algorithm>

#include <zentara/host/failure.h>

#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

std::vector<std::size_t> streamsOf(const CameraInfo& camera, const std::vector<StreamInfo>& all) {
    std::vector<std::size_t> own;
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (all[index].camera.path == camera.path)
            own.push_back(index);
    }
    return own;
}

} // namespace

std::vector<CameraInfo> recordedCameras(const std::vector<StreamInfo>& streams) {
    std::vector<CameraInfo> cameras;
    for (const StreamInfo& stream : streams) {
        const auto known = std::find_if(cameras.begin(), cameras.end(), [&](const CameraInfo& camera) {
            return camera.path == stream.camera.path;
        });
        const bool isNew = known == cameras.end(); // which adding one changes
        CameraInfo& camera = isNew ? cameras.emplace_back(stream.camera) : *known;
        if (isNew)
            camera.kinds.clear();
        if (std::find(camera.kinds.begin(), camera.kinds.end(), stream.mode.kind) == camera.kinds.end())
            camera.kinds.push_back(stream.mode.kind);
    }
    return cameras;
}

PlayedCamera::PlayedCamera(std::string file, const std::vector<StreamInfo>& streams, CameraInfo camera,
                           PlayOptions wanted)
    : identity(std::move(camera)), options(std::move(wanted)),
      playback(std::make_shared<Playback>(std::move(file), streams, streamsOf(identity, streams),
                                          options.speed)) {}

std::string PlayedCamera::whatItLacks() const {
    return Utils::visibleText(identity.label()) + " is played from recording '" + playback->file +
           "', which holds what its camera streamed, and nothing else of it";
}

void PlayedCamera::checkOpen(const std::string& what) const {
    if (isClosed)
        throw Failure(Failure::Usage, "cannot " + what,
                      "camera " + Utils::visibleText(identity.label()) + " is closed");
}

/// One for each recorded stream, but for streams that were recorded twice.
std::vector<Mode> PlayedCamera::modes(Kind kind) {
    checkOpen("ask for the modes");
    std::vector<Mode> all;
    for (const std::size_t index : playback->streams) {
        const Mode& mode = playback->all[index].mode;
        if (mode.kind == kind && std::find(all.begin(), all.end(), mode) == all.end())
            all.push_back(mode);
    }
    return all;
}

Mode PlayedCamera::defaultMode(Kind kind) {
    const std::vector<Mode> all = modes(kind);
    if (all.empty())
        throw Failure(Failure::NoDevice, "recording '" + playback->file + "' has no " + kindName(kind) +
                                             " stream of " + Utils::visibleText(identity.label()));
    return all.front();
}

std::size_t PlayedCamera::indexOf(Kind kind, const Mode& mode) const {
    const auto found =
        std::find_if(playback->streams.begin(), playback->streams.end(), [&](std::size_t index) {
            return playback->all[index].mode.kind == kind && playback->all[index].mode == mode;
        });
    if (found == playback->streams.end())
        throw Failure(Failure::Usage,
                      "recording '" + playback->file + "' has no stream in the mode " + mode.text());
    return *found;
}

StreamInfo PlayedCamera::streamInfo(Kind kind, const Mode& mode) {
    checkOpen("ask for what belongs to its frames");
    return playback->all[indexOf(kind, mode)];
}

StreamSetup PlayedCamera::streamSetup(Kind kind, const Mode& mode) {
    checkOpen("stream");
    StreamSetup setup;
    setup.what = "play recording '" + playback->file + "'";
    setup.open = [played = playback, index = indexOf(kind, mode)] {
        return std::make_shared<PlayedSource>(played, index);
    };
    setup.note = options.note;
    return setup;
}

/// The first stream of depth.
const StreamInfo& PlayedCamera::depth(const std::string& what) const {
    checkOpen(what);
    for (const std::size_t index : playback->streams) {
        if (playback->all[index].mode.kind == Kind::Depth)
            return playback->all[index];
    }
    throw Unsupported("cannot " + what, "recording '" + playback->file + "' has no depth stream of " +
                                            Utils::visibleText(identity.label()));
}

Corrections PlayedCamera::corrections() { return depth("ask for the corrections").corrections; }

Sources PlayedCamera::sources() {
    const StreamInfo& info = depth("ask where the calibration comes from");
    Sources told;
    told.lens = info.lensSource;
    told.extrinsics = info.poseSource;
    told.corrections = info.correctionsSource;
    told.failure = info.sourceFailure;
    return told; // of accelerometer and serial number a recording has nothing
}

/// The lenses of the recorded modes, each once.
StereoCameraParametersArray PlayedCamera::lensModels() {
    checkOpen("ask for the lens models");
    StereoCameraParametersArray told;
    const auto add = [](auto& block, const auto& value) {
        if (!value || std::find(block.values.begin(), block.values.end(), *value) != block.values.end())
            return;
        block.values.push_back(*value);
        block.count = static_cast<std::uint32_t>(block.values.size());
    };
    for (const std::size_t index : playback->streams) {
        const StreamInfo& info = playback->all[index];
        if (info.mode.kind != Kind::Audio)
            add(info.mode.kind == Kind::Depth ? told.depthIntrinsics : told.colorIntrinsics, info.lens);
        if (told.extrinsics.values.empty())
            add(told.extrinsics, info.pose);
    }
    return told;
}

} // namespace Zentara::Host
