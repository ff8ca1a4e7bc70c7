#include "host/cameras/real_camera.h"

#include <zentara/utils/format.h>

#include "host/cameras/calibration_origin.h"
#include "host/streams/camera_source.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

RealCamera::RealCamera(std::shared_ptr<CameraRegister> where, const CameraEntry& found)
    : whereFrom(std::move(where)), identity(infoOf(found)),
      errands(Utils::visibleText(identity.label()), whereFrom->limit(), whereFrom->note()),
      parts(std::make_shared<CameraParts>(found, transfers, errands.notes())) {}

RealCamera::~RealCamera() {
    transfers->set({});
    errands.leave([this] { return "close " + identity.label(); }, [own = parts] { own->close(); });
}

void RealCamera::checkOpen(const std::string& what) const {
    if (isClosed)
        throw Failure(Failure::Usage, "cannot " + what, "camera " + identity.label() + " is closed");
}

void RealCamera::passOn(const Failure& failure) {
    const bool mayBeAway = failure.code() == Failure::Failed || failure.code() == Failure::TimedOut;
    if (mayBeAway && dynamic_cast<const Unsupported*>(&failure) == nullptr && hand()->hangsIn().empty() &&
        !whereFrom->isPresent(identity.path).value_or(true))
        throw Failure(Failure::NoDevice, Utils::Format("%; camera % is not plugged in any more") %
                                             failure.what() % Utils::visibleText(identity.shortLabel()));
    throw;
}

std::vector<Mode> RealCamera::modes(Kind kind) {
    return ask("ask " + identity.label() + " for its modes",
               [kind](CameraParts& own) { return own.modes(kind); });
}

Mode RealCamera::defaultMode(Kind kind) {
    return ask("choose a mode of " + identity.label(),
               [kind](CameraParts& own) { return own.defaultMode(kind); });
}

StreamInfo RealCamera::streamInfo(Kind kind, const Mode& mode) {
    return ask("ask " + identity.label() + " for what belongs to its frames",
               [kind, mode, who = identity](CameraParts& own) { return own.streamInfo(kind, mode, who); });
}

StreamSetup RealCamera::streamSetup(Kind kind, const Mode& mode) {
    checkOpen("stream");
    return streamOf(std::static_pointer_cast<RealCamera>(shared_from_this()), kind, mode);
}

Corrections RealCamera::corrections() {
    return ask("ask for the corrections", [](CameraParts& own) { return own.corrections(); });
}

Sources RealCamera::sources() {
    return askDepth("ask where the calibration comes from",
                    [](Core::DepthNodeInterface& depth) { return sourcesOf(depth); });
}

StereoCameraParametersArray RealCamera::lensModels() {
    return askDepth("ask for the lens models",
                    [](Core::DepthNodeInterface& depth) { return depth.getImageRegistrationCalibration(); });
}

std::shared_ptr<IO::CameraChip> RealCamera::chip(const std::string& controller) {
    return ask("reach the controller of " + identity.label(), [controller](CameraParts& own) {
        own.chip().open(own.entry(), controller);
        return own.chip().chip();
    });
}

IO::VideoDeviceProxy& RealCamera::device() {
    static_cast<void>(chip({}));
    return *ask("reach the device of " + identity.label(),
                [](CameraParts& own) { return own.chip().device(); });
}

void RealCamera::close() {
    if (!isClosed.exchange(true))
        errands.run("close " + identity.label(), [own = parts] { own->close(); });
}

} // namespace Zentara::Host
