#include "tools/zentara/chips/chip_session.h"
#include "tools/zentara/cameras/camera_json.h"

#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/tool_log.h"

namespace Zentara::Tool {
namespace {

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

ChipSession::ChipSession(const ChipOptions& wanted, Console& target)
    : options(wanted), console(target), cameras(patiently(target)) {
    std::string known = options.controller;
    if (options.direct)
        camera = cameras.openDevice({options.plugins, known.empty() ? options.camera : known});
    else
        camera = options.writes ? cameras.openToWrite(options.camera) : cameras.open(options.camera);
    camera->watchTransfers([this](const IO::ChipTransfer& transfer) { note(transfer); });
    if (known.empty())
        known = options.direct ? std::string() : camera->info().controller;
    std::optional<ToolLog::Silence> trying; // a controller that is not there is no fault
    if (known.empty())
        trying.emplace();
    controller = &camera->chip(options.controller);
}

ChipSession::~ChipSession() {
    for (const IO::ChipTransfer& transfer : transfers)
        show(transfer);
    if (!camera)
        return;
    camera->watchTransfers({});
    try {
        camera->close();
        camera.reset();
        cameras.close();
    } catch (const std::exception& failure) {
        Tool::note(console, failure.what());
    }
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
    tellLine(console.err, IO::CameraChip::lineOf(controller == nullptr ? "" : controller->name(), transfer));
}

std::optional<ROMElement> ChipSession::storage() const {
    return options.direct ? std::nullopt : camera->storage();
}

Json ChipSession::identity() const {
    Json json = cameraJson(camera->info());
    json["controller"] = controller->name();
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
            json["transfers"].push_back(toJson(controller->name(), transfer));
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
