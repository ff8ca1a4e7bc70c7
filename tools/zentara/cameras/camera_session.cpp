#include "tools/zentara/cameras/camera_session.h"

#include <algorithm>

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

Host::Cameras::Options patiently(Console& console) { return {std::chrono::hours(24), notesTo(console.err)}; }

CameraSession::CameraSession(const CameraOptions& wanted, Console& target)
    : options(wanted), console(target), cameras(patiently(target)),
      opened(wanted.writes ? cameras.openToWrite(wanted.camera) : cameras.open(wanted.camera)) {}

bool CameraSession::hasDepth() const {
    const auto& kinds = opened.info().kinds;
    return std::find(kinds.begin(), kinds.end(), Host::Kind::Depth) != kinds.end();
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
