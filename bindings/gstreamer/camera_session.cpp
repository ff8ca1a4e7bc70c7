#include "bindings/gstreamer/camera_session.h"

#include <utility>

#include <zentara/host/cameras.h>
#include <zentara/host/recording.h>

namespace Zentara::GStreamer {

using Host::Kind;
using Host::Mode;

CameraSession::CameraSession(Wanted which, Host::Note whereNotesGo)
    : wanted(std::move(which)), note(std::move(whereNotesGo)) {}

Host::Camera CameraSession::open() const {
    if (!wanted.recording.empty())
        return Host::Recording(wanted.recording).camera(wanted.camera, {.note = note});
    Host::Cameras::Options options;
    options.note = note;
    return Host::Cameras(std::move(options)).open(wanted.camera);
}

Host::Camera CameraSession::camera() {
    const std::lock_guard hold(opening);
    if (failure)
        throw Host::Failure(*failure);
    if (opened)
        return *opened;
    try {
        Host::Camera camera = open();
        std::vector<Mode> all;
        for (const Kind kind : camera.info().kinds) {
            for (Mode& mode : camera.modes(kind))
                all.push_back(std::move(mode));
        }
        const std::lock_guard also(lock);
        opened = std::move(camera);
        known = std::move(all);
        areKnown = true;
    } catch (const Host::Failure& why) {
        failure = why;
        throw;
    }
    return *opened;
}

std::optional<std::vector<Mode>> CameraSession::modes(Kind kind) const {
    const std::lock_guard hold(lock);
    if (!areKnown)
        return {};
    std::vector<Mode> some;
    for (const Mode& mode : known) {
        if (mode.kind == kind)
            some.push_back(mode);
    }
    return some;
}

} // namespace Zentara::GStreamer
