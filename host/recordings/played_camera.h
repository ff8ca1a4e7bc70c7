#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include <zentara/host/recording.h>

#include "host/cameras/camera_impl.h"
#include "host/recordings/played_source.h"

namespace Zentara::Host {

/// The cameras of a recording: each has the streams of one path. In the order of their first streams.
[[nodiscard]] std::vector<CameraInfo> recordedCameras(const std::vector<StreamInfo>& streams);

/// A camera of a recording that plays. Only `isClosed` changes. Safe.
class PlayedCamera final : public CameraImpl {
public:
    /// \param camera one of recordedCameras()
    PlayedCamera(std::string file, const std::vector<StreamInfo>& streams, CameraInfo camera,
                 PlayOptions wanted);

    [[nodiscard]] const CameraInfo& info() const noexcept override { return identity; }
    [[nodiscard]] std::vector<Mode> modes(Kind kind) override;
    [[nodiscard]] Mode defaultMode(Kind kind) override;
    [[nodiscard]] StreamInfo streamInfo(Kind kind, const Mode& mode) override;
    [[nodiscard]] StreamSetup streamSetup(Kind kind, const Mode& mode) override;
    void close() override { isClosed = true; }
    void checkOpen(const std::string& what) const override;

    [[nodiscard]] Corrections corrections() override;
    [[nodiscard]] Sources sources() override;
    [[nodiscard]] StereoCameraParametersArray lensModels() override;

private:
    [[nodiscard]] std::string whatItLacks() const override;
    [[nodiscard]] std::size_t indexOf(Kind kind, const Mode& mode) const;
    [[nodiscard]] const StreamInfo& depth(const std::string& what) const;

    const CameraInfo identity;
    const PlayOptions options;
    const std::shared_ptr<Playback> playback;
    std::atomic<bool> isClosed{false};
};

} // namespace Zentara::Host
