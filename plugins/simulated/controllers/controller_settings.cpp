#include "plugins/simulated/controllers/controller_settings.h"

#include <filesystem>
#include <fstream>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "plugins/simulated/controllers/kept_flash.h"
#include "plugins/simulated/controllers/vc0258_controller.h"
#include "plugins/simulated/controllers/vc0345_controller.h"

namespace Zentara::Simulated {

namespace {

Bytes readFlash(const std::string& path) {
    try {
        const std::string text = Utils::readFile(path);
        return {text.begin(), text.end()};
    } catch (const Utils::UIOException& failure) {
        throw Plugin::ConfigurationPluginException(Utils::Format("simulated flash: %") % failure.what());
    }
}

std::unique_ptr<ControllerModel> makeOV0570(const ControllerSettings& wanted) {
    OV0570Controller::Settings settings;
    if (!wanted.devices.empty())
        settings.devices = wanted.devices;
    if (!wanted.flash.empty())
        settings.flash = readFlash(wanted.flash);
    settings.flashFile = wanted.keptFlash;
    settings.claimedDevices = wanted.claimedDevices;
    settings.fpgaRounds = wanted.fpgaRounds;
    settings.resetRounds = wanted.resetReads;
    return std::make_unique<OV0570Controller>(std::move(settings));
}

/// Of its two memories both begin with the bytes of the file.
std::unique_ptr<ControllerModel> makeVC0258(const ControllerSettings& wanted) {
    VC0258Controller::Settings settings;
    if (!wanted.flash.empty()) {
        settings.flash = readFlash(wanted.flash);
        settings.configuration = settings.flash;
    }
    settings.flashFile = wanted.keptFlash;
    return std::make_unique<VC0258Controller>(std::move(settings));
}

std::unique_ptr<ControllerModel> makeVC0345(const ControllerSettings& wanted) {
    VC0345Controller::Settings settings;
    if (!wanted.flash.empty())
        settings.flash = readFlash(wanted.flash);
    settings.flashFile = wanted.keptFlash;
    return std::make_unique<VC0345Controller>(std::move(settings));
}

std::unique_ptr<ControllerModel> makeModel(const ControllerSettings& wanted) {
    switch (*wanted.chip) {
    case ChipKind::VC0258:
        return makeVC0258(wanted);
    case ChipKind::VC0345:
        return makeVC0345(wanted);
    default:
        return makeOV0570(wanted);
    }
}

/// The registers of the time-of-flight controller as the file has them, low byte first, and from now on the other way
/// round. Those that change by themselves are not written.
void keepRegisters(ControllerModel& model, const std::string& path) {
    constexpr std::uint32_t count = 128;
    RegisterFile* const registers = model.tofRegisters();
    if (!registers) {
        throw Plugin::ConfigurationPluginException(
            "simulated camera: without a time-of-flight controller there are no registers to keep");
    }
    Bytes present;
    for (std::uint32_t address = 0; address < count; ++address) {
        present.push_back(static_cast<std::uint8_t>(registers->peek(address)));
        present.push_back(static_cast<std::uint8_t>(registers->peek(address) >> 8));
    }
    const auto kept = std::make_shared<KeptFlash>(path, std::move(present));
    const Bytes& bytes = kept->bytes();
    for (std::uint32_t address = 0; address < count; ++address)
        registers->change(address, bytes[2 * address] | std::uint32_t{bytes[2 * address + 1]} << 8);
    registers->setObserver([kept](std::uint32_t address, std::uint32_t value) {
        if (address < count) {
            kept->write(2 * address, static_cast<std::uint8_t>(value));
            kept->write(2 * address + 1, static_cast<std::uint8_t>(value >> 8));
        }
    });
}

void keepLog(ControllerPort& port, const std::string& path) {
    const std::filesystem::path name(std::u8string(path.begin(), path.end()));
    auto file = std::make_shared<std::ofstream>(name, std::ios::app | std::ios::binary);
    if (!*file) {
        throw Plugin::ConfigurationPluginException(
            Utils::Format("simulated camera: cannot write the transfer log '%'") % path);
    }
    port.setObserver([file, kind = port.model().kind()](const Transfer& transfer) {
        *file << transferLine(kind, transfer) << '\n' << std::flush;
    });
}

} // namespace

std::unique_ptr<ControllerPort> makeControllerPort(const ControllerSettings& settings) {
    if (!settings.chip)
        return nullptr;
    auto port = std::make_unique<ControllerPort>(makeModel(settings));
    for (const TransferFault& fault : settings.faults)
        port->addFault(fault);
    if (!settings.keptRegisters.empty())
        keepRegisters(port->model(), settings.keptRegisters);
    if (!settings.transferLog.empty())
        keepLog(*port, settings.transferLog);
    return port;
}

} // namespace Zentara::Simulated
