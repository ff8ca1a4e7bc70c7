#include "tools/zentara/chip_session.h"

#include <utility>

#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/format.h>

#include "plugins/simulated/controllers/controller_settings.h"
#include "tools/zentara/device_choice.h"

namespace Zentara::Tool {
namespace {

/// Devices made while it lives have the controller that the user named.
class ChosenCamera {
public:
    explicit ChosenCamera(const std::string& name) {
        before = chip.isDefined() ? chip.getValue() : "";
        if (!name.empty())
            chip.setValue(name.c_str());
    }
    ~ChosenCamera() { chip.setValue(before.empty() ? nullptr : before.c_str()); }
    ChosenCamera(const ChosenCamera&) = delete;
    ChosenCamera& operator=(const ChosenCamera&) = delete;

private:
    Utils::EnvironmentVariable chip{Simulated::ControllerSettings::chipVariable};
    std::string before;
};

Json toJson(ChipKind kind, const Transfer& transfer) {
    Json json{{"direction", transfer.isGet ? "GET" : "SET"},
              {"unit", transfer.unit},
              {"control", transfer.control},
              {"sent", bytesText(transfer.sent)}};
    if (!transfer.reply.empty())
        json["reply"] = bytesText(transfer.reply);
    json["meaning"] = transferMeaning(kind, transfer);
    if (!transfer.failure.empty())
        json["failure"] = transfer.failure;
    return json;
}

} // namespace

CLI::Range any32Bits() { return {std::uint32_t{0}, std::uint32_t{0xFFFFFFFF}}; }

void addChipOptions(CLI::App& command, ChipOptions& options) {
    command.add_option("--camera", options.camera, "Which simulated camera: the one with that controller")
        ->type_name("OV0570|VC0258|VC0345")
        ->check(CLI::IsMember({"OV0570", "VC0258", "VC0345"}, CLI::ignore_case));
    command.add_flag("--direct", options.direct, "Call the device from this thread, without the worker");
    command.add_flag("--trace", options.trace, "Show each transfer, its bytes and what they mean");
    command.add_flag("--json", options.json, "Print JSON");
}

ChipSession::ChipSession(const char* verbName, const ChipOptions& wanted, Console& target)
    : verb(verbName), options(wanted), console(target) {
    const ChosenCamera chosen(options.camera);
    const GUID guid = chooseDevice(Core::ImplType_VIDEO_DEVICE, "video device", console.err);
    attempt("open the camera", [&] {
        proxy = std::make_unique<IO::VideoDeviceProxy>(guid, !options.direct);
        proxy->open();
    });
    attempt("find the camera's controller", [&] {
        camera = CameraChip::detect(*proxy, [this](const Transfer& transfer) { note(transfer); });
    });
}

ChipSession::~ChipSession() {
    for (const Transfer& transfer : transfers)
        show(transfer);
    camera.reset();
    try {
        proxy->close();
    } catch (const std::exception& failure) {
        console.err << "zentara " << verb << ": cannot close the camera: " << failure.what() << '\n';
    }
}

void ChipSession::note(const Transfer& transfer) {
    if (!options.trace)
        return;
    if (options.json)
        transfers.push_back(transfer);
    else
        show(transfer);
}

void ChipSession::show(const Transfer& transfer) {
    console.err << transferLine(camera->kind(), transfer) << '\n';
}

void ChipSession::finish(Json result, const std::string& text) {
    if (!options.json) {
        console.out << text << '\n';
        return;
    }
    Json json = beginJson(verb);
    json["camera"] = chipName(camera->kind());
    json["proxified"] = !options.direct;
    json.update(result);
    if (options.trace) {
        json["transfers"] = Json::array();
        for (const Transfer& transfer : transfers)
            json["transfers"].push_back(toJson(camera->kind(), transfer));
        transfers.clear();
    }
    print(console.out, json);
}

std::string hexText(std::uint32_t value) { return Utils::Format("0x%{:X2}") % value; }

void checkRange(const char* what, std::uint32_t value, std::uint32_t last, const CameraChip& chip) {
    if (value > last)
        throw ToolFailure(ExitCode_USAGE, Utils::Format("% % is out of range on the %: 0 to %") % what %
                                              hexText(value) % chipName(chip.kind()) % hexText(last));
}

} // namespace Zentara::Tool
