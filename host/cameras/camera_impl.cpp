#include "host/cameras/camera_impl.h"

#include <zentara/host/failure.h>

namespace Zentara::Host {

std::string CameraImpl::whatItLacks() const { return info().label() + " is no camera that is plugged in"; }

void CameraImpl::refuse(const std::string& what) const { throw Unsupported("cannot " + what, whatItLacks()); }

Corrections CameraImpl::corrections() { refuse("ask for the corrections"); }

Sources CameraImpl::sources() { refuse("ask where the calibration comes from"); }

StereoCameraParametersArray CameraImpl::lensModels() { refuse("ask for the lens models"); }

std::shared_ptr<IO::CameraChip> CameraImpl::chip(const std::string&) { refuse("reach the controller"); }

IO::VideoDeviceProxy& CameraImpl::device() { refuse("reach the device"); }

void CameraImpl::watchTransfers(IO::ChipListener) { refuse("watch the controller's transfers"); }

RealCamera& CameraImpl::real(const std::string& what) { refuse(what); }

} // namespace Zentara::Host
