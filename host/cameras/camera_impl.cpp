#include "host/cameras/camera_impl.h"

#include <zentara/host/failure.h>

namespace Zentara::Host {

namespace {

[[noreturn]] void refuse(const CameraImpl& camera, const std::string& what) {
    throw Unsupported("cannot " + what, camera.info().label() + " is no camera that is plugged in");
}

} // namespace

IO::CameraChip& CameraImpl::chip(const std::string&) { refuse(*this, "reach the controller"); }

IO::VideoDeviceProxy& CameraImpl::device() { refuse(*this, "reach the device"); }

void CameraImpl::watchTransfers(IO::ChipListener) { refuse(*this, "watch the controller's transfers"); }

RealCamera& CameraImpl::real(const std::string& what) { refuse(*this, what); }

} // namespace Zentara::Host
