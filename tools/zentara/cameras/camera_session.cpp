#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/camera_json.h"

#include <algorithm>
#include <exception>

#include <CLI/CLI.hpp>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/guids.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>

#include "host/cameras/camera_choice.h"
#include "host/guid_text.h"
#include "tools/zentara/arguments.h"

namespace Zentara::Tool {

void addCameraName(CLI::App& command, std::string& name) {
    command
        .add_option("--camera", name,
                    "Which camera: its serial number, or a part of its name, its product's or its "
                    "controller's; the first one unless given")
        ->type_name("NAME")
        ->check(anyName("camera"));
}

void addCameraOptions(CLI::App& command, CameraOptions& options) {
    addCameraName(command, options.camera);
    command.add_flag("--json", options.json, "Print JSON");
}

CameraSession::CameraSession(const CameraOptions& wanted, Console& target)
    : options(wanted), console(target),
      entry(options.writes
                ? chooseCameraToWrite(CameraBus(notesTo(console.err)).someCameras(), options.camera)
                : chooseCamera(CameraBus(notesTo(console.err)).someCameras(), options.camera)) {
    description.select(entry.nodes.front());
    if (const NodeEvent* depthNode = entry.find(NodeType_DEPTH))
        node = std::make_unique<OpenNode<Core::DepthNodeInterface>>(*depthNode, notesTo(console.err));
}

CameraSession::~CameraSession() {
    const Step watched("close the camera");
    try {
        if (interpreter)
            interpreter->dispose();
        interpreter.reset();
        if (node)
            node->dispose();
    } catch (const std::exception& failure) {
        note(console, std::string("cannot close the camera: ") + failure.what());
    }
}

Core::DepthNodeInterface& CameraSession::depth() const {
    if (!node)
        throw Failure(Failure::NoDevice, "camera " + printable(entry.serialNumber()) + " has no depth node");
    return **node;
}

IO::ParameterInterpreter& CameraSession::parameters() {
    if (interpreter)
        return *interpreter;
    const GUID guid = Plugin::callPlugin([this] { return store().getParameterInterpreterGUID(); });
    auto& device = *depth().getAVDeviceProxy();
    if (guidEquals(guid, Core::Guids::NULL_IMPL))
        throw Failure(Failure::Failed, "camera " + printable(entry.serialNumber()) +
                                           " has no parameters: its description names no back-end for them");
    attempt("reach the parameters through " + guidLabel(guid), [&] {
        auto connected = IO::LibraryParameterInterpreter::create(guid);
        connected->initialize(device, node->event().hardwareIds(), store().getHardwareVersion());
        interpreter = connected;
    });
    return *interpreter;
}

void CameraSession::reconnect() {
    if (interpreter)
        attempt("let go of the parameters", [&] { interpreter->dispose(); });
    interpreter.reset();
}

void CameraSession::finish(const Json& result, const std::string& text) const {
    if (!options.json) {
        console.out << text;
        return;
    }
    Json json = beginJson(console);
    json["camera"] = cameraJson(entry);
    json.update(result);
    print(console.out, json);
}

void CameraSession::passOn(const Failure& failure) const {
    if (failure.code() != Failure::Failed && failure.code() != Failure::TimedOut)
        throw failure;
    const std::vector<CameraEntry> present = CameraBus(notesTo(console.err)).cameras();
    const bool isThere = std::any_of(present.begin(), present.end(),
                                     [this](const CameraEntry& camera) { return camera.path == entry.path; });
    if (isThere)
        throw failure;
    throw Failure(Failure::NoDevice, Utils::Format("%; camera % is not plugged in any more") %
                                         failure.what() % printable(entry.serialNumber()));
}

} // namespace Zentara::Tool
