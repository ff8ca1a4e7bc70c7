#include <zentara/host/cameras.h>

#include <utility>

#include <zentara/host/user_log.h>

#include "host/cameras/bare_camera.h"
#include "host/cameras/camera_choice.h"
#include "host/cameras/camera_register.h"
#include "host/cameras/real_camera.h"

namespace Zentara::Host {

Cameras::Cameras() : Cameras(Options()) {}

Cameras::Cameras(Options options) {
    beginUserLog();
    shared = std::make_shared<CameraRegister>(std::move(options));
}

Cameras::~Cameras() = default;

std::vector<CameraInfo> Cameras::list() {
    std::vector<CameraInfo> cameras;
    for (const CameraEntry& entry : shared->entries())
        cameras.push_back(infoOf(entry));
    return cameras;
}

std::vector<CameraInfo> Cameras::choose(const std::vector<std::string>& names) {
    std::vector<CameraInfo> chosen;
    for (const CameraEntry& entry : chooseCameras(shared->someEntries(), names))
        chosen.push_back(infoOf(entry));
    return chosen;
}

Camera Cameras::open(const std::string& name) {
    return Camera(std::make_shared<RealCamera>(shared, chooseCamera(shared->someEntries(), name)));
}

Camera Cameras::open(const char* name) { return open(std::string(name)); }

Camera Cameras::openToWrite(const std::string& name) {
    return Camera(std::make_shared<RealCamera>(shared, chooseCameraToWrite(shared->someEntries(), name)));
}

Camera Cameras::open(const CameraInfo& camera) {
    for (const CameraEntry& entry : shared->someEntries()) {
        if (entry.path == camera.path)
            return Camera(std::make_shared<RealCamera>(shared, entry));
    }
    throw Failure(Failure::NoDevice, "cannot open " + camera.label(), "it is not plugged in any more");
}

Camera Cameras::openDevice(const DeviceOptions& device) {
    return Camera(std::make_shared<BareCamera>(device, Options{shared->limit(), shared->note()}));
}

void Cameras::watch() { shared->watch(); }

std::optional<CameraEvent> Cameras::next(std::chrono::milliseconds limit) { return shared->next(limit); }

std::string Cameras::backEnds() { return shared->backEnds(); }

void Cameras::close() { shared->close(); }

} // namespace Zentara::Host
