#include "tools/zentara/chips/chip_session.h"

#include <exception>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/tool_log.h"

namespace Zentara::Tool {
namespace {

Json transferJson(const char* chip, const IO::ChipTransfer& transfer) {
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

Trace shownTrace(bool isWanted, Console& console) {
    if (!isWanted)
        return {};
    return [&console](const std::string& chip, const IO::ChipTransfer& transfer) {
        tellLine(console.err, IO::CameraChip::lineOf(chip, transfer));
    };
}

/// With --direct the camera has no description, so `--camera` is free to say what the bare device is to simulate.
Camera openChip(const ChipOptions& options, Cameras& cameras, Trace trace) {
    const std::string& wanted = options.controller.empty() ? options.camera : options.controller;
    const Camera camera = options.direct ? cameras.openDevice({options.plugins, wanted})
                                         : openCamera(cameras, options.camera, options.writes);
    // the trace names the controller, which is known only once its own first transfers are over: they have no name
    const auto chip = std::make_shared<std::string>();
    if (trace)
        camera.watchTransfers([chip, trace = std::move(trace)](const IO::ChipTransfer& transfer) {
            if (transfer.isOver)
                trace(*chip, transfer);
        });
    std::optional<ToolLog::Silence> trying; // a controller that is not there is no fault
    if (options.controller.empty() && (options.direct || camera.info().controller.empty()))
        trying.emplace();
    *chip = camera.chip(options.controller).name();
    return camera;
}

ChipSession::ChipSession(const ChipOptions& wanted, Console& target)
    : options(wanted), console(target), cameras(patiently(target)) {
    const Trace kept = [this](const std::string&, const IO::ChipTransfer& transfer) {
        transfers.push_back(transfer);
    };
    opened =
        openChip(options, cameras, options.json && options.trace ? kept : shownTrace(options.trace, console));
    asked.emplace(Utils::LogArea_CHIPS);
}

/// Transfers that were kept for JSON, which a failure has prevented, are shown as text: they explain it.
ChipSession::~ChipSession() {
    const Trace show = shownTrace(true, console);
    for (const IO::ChipTransfer& transfer : transfers)
        show(opened ? chip().name() : "", transfer);
    if (!opened)
        return;
    // what closing asks of the camera, nobody has asked for
    opened->watchTransfers({});
    try {
        opened->close();
        opened.reset();
        cameras.close();
    } catch (const std::exception& failure) {
        // A camera that has failed before may well fail here, and who hears of the first is told enough.
        if (std::uncaught_exceptions() == 0)
            note(console, failure.what());
    }
}

Json ChipSession::about(const Json& result) const {
    Json json = beginJson(console);
    json["camera"] = cameraJson(opened->info());
    json["camera"]["controller"] = chip().name();
    json["proxified"] = !options.direct;
    json.update(result);
    return json;
}

void ChipSession::finish(const Json& result, const std::string& text) {
    if (!options.json) {
        console.out << text << '\n';
        return;
    }
    Json json = about(result);
    if (options.trace) {
        json["transfers"] = Json::array();
        for (const IO::ChipTransfer& transfer : transfers)
            json["transfers"].push_back(transferJson(chip().name(), transfer));
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
