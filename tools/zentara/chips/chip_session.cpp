#include "tools/zentara/chips/chip_session.h"
#include "tools/zentara/cameras/camera_json.h"

#include <algorithm>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/core/descriptor_details.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/cameras/camera_choice.h"
#include "host/cameras/device_choice.h"
#include "host/guid_text.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/tool_log.h"

namespace Zentara::Tool {
namespace {

/// Devices made while it lives have the controller that the user named.
class ChosenController {
public:
    explicit ChosenController(const std::string& name) {
        before = chip.isDefined() ? chip.getValue() : "";
        if (!name.empty())
            chip.setValue(name.c_str());
    }
    ~ChosenController() { chip.setValue(before.empty() ? nullptr : before.c_str()); }
    ChosenController(const ChosenController&) = delete;
    ChosenController& operator=(const ChosenController&) = delete;

private:
    Utils::EnvironmentVariable chip{IO::CameraChip::wantedVariable};
    std::string before;
};

Json toJson(const char* chip, const IO::ChipTransfer& transfer) {
    Json json{{"direction", transfer.isGet ? "GET" : "SET"},
              {"unit", transfer.unit},
              {"control", transfer.control},
              {"sent", IO::bytesText(transfer.sent)}};
    if (!transfer.reply.empty())
        json["reply"] = IO::bytesText(transfer.reply);
    json["meaning"] = IO::CameraChip::meaningOf(chip, transfer);
    if (!transfer.failure.empty())
        json["failure"] = transfer.failure;
    return json;
}

/// A camera's video device as its node holds it, without the node.
class NodeDevice final : public IO::VideoDeviceProxy {
public:
    using VideoDeviceProxy::initialize;
    using VideoDeviceProxy::VideoDeviceProxy;
};

const NodeEvent& videoNodeOf(const CameraEntry& camera) {
    for (const NodeType type : {NodeType_DEPTH, NodeType_COLOR}) {
        if (const NodeEvent* node = camera.find(type))
            return *node;
    }
    throw Failure(Failure::NoDevice, "camera " + printable(camera.serialNumber()) +
                                         " has no video device, through which its controller is reached");
}

} // namespace

void addChipOptions(CLI::App& command, ChipOptions& options) {
    addCameraName(command, options.camera);
    CLI::Option* direct =
        command.add_flag("--direct", options.direct,
                         "Talk to the bare video device plug-in, without descriptions and the worker thread; "
                         "--camera then names the controller that a simulated one is to have");
    addPluginName(command, options.plugins)->needs(direct);
    command
        .add_option("--controller", options.controller,
                    "The camera's controller, whatever its description says or the device answers")
        ->check(CLI::IsMember(IO::CameraChip::names(), CLI::ignore_case));
    command.add_flag("--trace", options.trace, "Show each transfer, its bytes and what they mean");
    command.add_flag("--json", options.json, "Print JSON");
}

ChipSession::ChipSession(const ChipOptions& wanted, Console& target) : options(wanted), console(target) {
    if (options.direct)
        openDevice();
    else
        openCamera();
}

void ChipSession::openDevice() {
    const std::string wanted = options.controller.empty() ? options.camera : options.controller;
    const std::vector<std::string> known = IO::CameraChip::names();
    if (!wanted.empty() && std::find(known.begin(), known.end(), Utils::toUpper(wanted)) == known.end())
        throw Failure(Failure::Usage,
                      "there is no controller '" + wanted + "'; known: " + Utils::join(known, ", "));
    const ChosenController chosen(wanted);
    const GUID guid =
        chooseDevice(Core::ImplType_VIDEO_DEVICE, "video device", options.plugins, notesTo(console.err));
    deviceName = guidLabel(guid);
    attempt("open " + deviceName, [&] {
        proxy = std::make_unique<IO::VideoDeviceProxy>(guid, false);
        proxy->open();
    });
    bindChip(deviceName, options.controller);
}

void ChipSession::openCamera() {
    const std::vector<CameraEntry> present = CameraBus(notesTo(console.err)).someCameras();
    entry =
        options.writes ? chooseCameraToWrite(present, options.camera) : chooseCamera(present, options.camera);
    node = videoNodeOf(entry);
    store = std::make_unique<CameraStore>();
    store->select(node);
    const GUID guid = Plugin::callPlugin([this] { return store->view().getDeviceImplGUID(); });
    attempt(Utils::Format("open % through %") % cameraLabel(node) % guidLabel(guid), [&] {
        auto device = std::make_unique<NodeDevice>(guid, true);
        device->initialize(&node, &store->view());
        proxy = std::move(device);
        proxy->open();
    });
    const auto described = [this] { return Core::controllerNameOf(store->view()); };
    bindChip(cameraLabel(node),
             options.controller.empty() ? Plugin::callPlugin(described) : options.controller);
}

/// A camera whose description does not name its controller is asked.
void ChipSession::bindChip(const std::string& label, const std::string& described) {
    attempt("reach the controller of " + label, [&] {
        const IO::ChipListener listener = [this](const IO::ChipTransfer& transfer) { note(transfer); };
        if (described.empty()) {
            const ToolLog::Silence trying; // a controller that is not there is no fault
            camera = IO::CameraChip::detect(*proxy, listener);
        } else {
            camera = IO::CameraChip::create(described, *proxy, listener);
        }
        if (!camera)
            throw Failure(Failure::NoDevice, "the camera has no controller that is known");
    });
}

ChipSession::~ChipSession() {
    for (const IO::ChipTransfer& transfer : transfers)
        show(transfer);
    const Step watched("close the camera");
    camera.reset();
    try {
        proxy->close();
    } catch (const std::exception& failure) {
        Tool::note(console, std::string("cannot close the camera: ") + failure.what());
    }
    proxy.reset();
}

/// A transfer that hangs is named by what it began with.
void ChipSession::note(const IO::ChipTransfer& transfer) {
    if (!transfer.isOver) {
        underWay.emplace(Utils::Format("% unit %, control %") % (transfer.isGet ? "GET" : "SET") %
                         transfer.unit % transfer.control);
        return;
    }
    underWay.reset();
    if (!options.trace)
        return;
    if (options.json)
        transfers.push_back(transfer);
    else
        show(transfer);
}

void ChipSession::show(const IO::ChipTransfer& transfer) {
    tellLine(console.err, IO::CameraChip::lineOf(camera->name(), transfer));
}

std::optional<ROMElement> ChipSession::storage() const {
    if (!store)
        return std::nullopt;
    try {
        return Plugin::callPlugin([this] { return store->view().getROMElement(storageROMElement); });
    } catch (const Plugin::NotSupportedPluginException&) {
        return std::nullopt;
    }
}

Json ChipSession::identity() const {
    Json json = cameraJson(entry);
    if (options.direct)
        json["name"] = deviceName;
    json["controller"] = camera->name();
    return json;
}

void ChipSession::finish(Json result, const std::string& text) {
    if (!options.json) {
        console.out << text << '\n';
        return;
    }
    Json json = beginJson(console);
    json["camera"] = identity();
    json["proxified"] = !options.direct;
    json.update(result);
    if (options.trace) {
        json["transfers"] = Json::array();
        for (const IO::ChipTransfer& transfer : transfers)
            json["transfers"].push_back(toJson(camera->name(), transfer));
        transfers.clear();
    }
    print(console.out, json);
}

std::string hexText(std::uint32_t value) { return Utils::Format("0x%{:X2}") % value; }

void checkRange(const char* what, std::uint32_t value, std::uint32_t last, const IO::CameraChip& chip) {
    if (value > last)
        throw Failure(Failure::Usage, Utils::Format("% % is out of range on the %: 0 to %") % what %
                                          hexText(value) % chip.name() % hexText(last));
}

} // namespace Zentara::Tool
