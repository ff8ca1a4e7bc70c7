#include "tools/zentara/cameras/camera_session.h"

#include <CLI/CLI.hpp>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"

namespace Zentara::Tool {

void addCameraName(CLI::App& command, std::string& name) {
    command
        .add_option("--camera", name,
                    "Which camera: its serial number, or a part of its name, its product's or its "
                    "controller's; unless given the first one, or, to write to it, the only one")
        ->type_name("NAME")
        ->check(anyName("camera"));
}

void addCameraOptions(CLI::App& command, CameraOptions& options) {
    addCameraName(command, options.camera);
    command.add_flag("--json", options.json, "Print JSON");
}

/// The library's own limit is out of the way: how long a step may take, --patience says, and the supervisor watches.
Cameras::Options patiently(Console& console) { return {std::chrono::hours(24), notesTo(console.err)}; }

/// Nothing is written to a camera that merely was the first one: unless named it must be the only one.
Camera openCamera(Cameras& cameras, const std::string& name, bool writes) {
    if (!writes)
        return cameras.open(name);
    try {
        return cameras.openToWrite(name);
    } catch (const Failure& failure) {
        if (!name.empty() || failure.code() != Failure::Usage)
            throw;
        throw Failure(failure.code(), failure.message(), failure.cause(), "name one with --camera");
    }
}

CameraSession::CameraSession(const CameraOptions& wanted, Console& target)
    : options(wanted), console(target), cameras(patiently(target)),
      opened(openCamera(cameras, wanted.camera, wanted.writes)) {}

void CameraSession::noteOtherCamera(const std::string& serialNumber) const {
    const std::string& present = opened.info().serial;
    if (!serialNumber.empty() && serialNumber != present)
        note(console, "the file is of camera " + serialNumber + ", this one is " + present);
}

void CameraSession::finish(const Json& result, const std::string& text) const {
    if (!options.json) {
        console.out << text;
        return;
    }
    Json json = beginJson(console);
    json["camera"] = cameraJson(opened.info());
    json.update(result);
    print(console.out, json);
}

void CameraSession::close() {
    try {
        opened.close();
        cameras.close();
    } catch (const Failure& failure) {
        note(console, failure.what());
    }
}

} // namespace Zentara::Tool
