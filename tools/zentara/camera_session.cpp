#include "tools/zentara/camera_session.h"

#include <exception>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/video_device_proxy.h>

#include "tools/zentara/guid_text.h"

namespace Zentara::Tool {

void addCameraOptions(CLI::App& command, CameraOptions& options) {
    command
        .add_option("--camera", options.camera,
                    "Which camera, by serial number or part of its name; the first one unless given")
        ->type_name("NAME");
    command.add_flag("--json", options.json, "Print JSON");
}

CameraSession::CameraSession(const char* verbName, const CameraOptions& wanted, Console& target)
    : verb(verbName), options(wanted), console(target) {
    const std::vector<std::string> names =
        options.camera.empty() ? std::vector<std::string>() : std::vector<std::string>{options.camera};
    entry = chooseCameras(CameraBus(console.err).cameras(), names).front();
    const NodeEvent* depthNode = entry.find(NodeType_DEPTH);
    if (depthNode == nullptr)
        throw ToolFailure(ExitCode_NO_DEVICE, "camera " + entry.serialNumber() + " has no depth node");
    node = std::make_unique<OpenNode<Core::DepthNodeInterface>>(*depthNode, console.err);
}

CameraSession::~CameraSession() {
    try {
        if (interpreter)
            interpreter->dispose();
        node->dispose();
    } catch (const std::exception& failure) {
        console.err << "zentara " << verb << ": cannot close the camera: " << failure.what() << '\n';
    }
}

IO::ParameterInterpreter& CameraSession::parameters() {
    if (interpreter)
        return *interpreter;
    const GUID guid = store().getParameterInterpreterGUID();
    attempt("reach the parameters through " + guidLabel(guid), [&] {
        auto connected = IO::LibraryParameterInterpreter::create(guid);
        connected->initialize(*depth().getAVDeviceProxy(), node->event().hardwareIds(),
                              store().getHardwareVersion());
        interpreter = connected;
    });
    return *interpreter;
}

Json CameraSession::identity() const {
    return {{"path", entry.path},
            {"serialNumber", entry.serialNumber()},
            {"vendor", store().getVendorName()},
            {"product", store().getProductName()}};
}

void CameraSession::finish(const Json& result, const std::string& text) const {
    if (!options.json) {
        console.out << text;
        return;
    }
    Json json = beginJson(verb);
    json["camera"] = identity();
    json.update(result);
    print(console.out, json);
}

} // namespace Zentara::Tool
