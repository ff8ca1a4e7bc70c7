#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/cameras.h>

#include "host/cameras/bound_chip.h"
#include "host/cameras/camera_impl.h"
#include "host/cameras/errands.h"

namespace Zentara::Host {

/// Device plug-ins as a camera, without what belongs to one: their modes are those that every device takes.
class BareCamera final : public CameraImpl {
public:
    /// Chooses the plug-ins; makes nothing yet. \throws Failure
    BareCamera(DeviceOptions wanted, const Cameras::Options& shared);
    ~BareCamera() override;

    [[nodiscard]] const CameraInfo& info() const noexcept override { return identity; }
    [[nodiscard]] std::vector<Mode> modes(Kind kind) override;
    [[nodiscard]] Mode defaultMode(Kind kind) override;
    [[nodiscard]] StreamInfo streamInfo(Kind kind, const Mode& mode) override;
    [[nodiscard]] StreamSetup streamSetup(Kind kind, const Mode& mode) override;
    void close() override;
    [[nodiscard]] std::shared_ptr<IO::CameraChip> chip(const std::string& controller) override;
    [[nodiscard]] IO::VideoDeviceProxy& device() override;
    void watchTransfers(IO::ChipListener listener) override { transfers->set(std::move(listener)); }

    /// The device plug-in of that kind: video for depth. \throws Failure, as for choosing one
    [[nodiscard]] GUID plugin(Kind kind);
    [[nodiscard]] const std::shared_ptr<Hand>& hand() const noexcept { return errands.hand; }
    [[nodiscard]] const Note& note() const noexcept { return errands.note; }
    [[nodiscard]] std::chrono::milliseconds limit() const noexcept { return errands.limit; }

private:
    [[nodiscard]] GUID choose(Kind kind) const;

    const DeviceOptions options;
    const std::shared_ptr<TransferWatch> transfers = std::make_shared<TransferWatch>();
    CameraInfo identity; ///< set once
    Errands errands;
    const std::shared_ptr<BoundChip> bound; ///< used on the errands' thread alone
    Utils::Threading::Mutex lock;
    /// What was chosen so far: whoever chooses again would tell again that there are several.
    std::optional<GUID> video ZENTARA_GUARDED_BY(lock);
    std::optional<GUID> audio ZENTARA_GUARDED_BY(lock);
};

} // namespace Zentara::Host
