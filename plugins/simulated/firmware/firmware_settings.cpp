#include "plugins/simulated/firmware/firmware_settings.h"

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "plugins/simulated/firmware/kept_bytes.h"
#include "plugins/simulated/firmware/vc0258_firmware.h"
#include "plugins/simulated/firmware/vc0345_firmware.h"

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

std::unique_ptr<Firmware> makeOV0570(const FirmwareSettings& wanted) {
    OV0570Firmware::Settings settings;
    if (!wanted.devices.empty())
        settings.devices = wanted.devices;
    if (!wanted.flash.empty())
        settings.flash = readFlash(wanted.flash);
    settings.flashFile = wanted.keptFlash;
    settings.claimedDevices = wanted.claimedDevices;
    settings.fpgaRounds = wanted.fpgaRounds;
    settings.resetRounds = wanted.resetReads;
    return std::make_unique<OV0570Firmware>(std::move(settings));
}

/// Of its two memories both begin with the bytes of the file.
std::unique_ptr<Firmware> makeVC0258(const FirmwareSettings& wanted) {
    VC0258Firmware::Settings settings;
    if (!wanted.flash.empty()) {
        settings.flash = readFlash(wanted.flash);
        settings.configuration = settings.flash;
    }
    settings.flashFile = wanted.keptFlash;
    return std::make_unique<VC0258Firmware>(std::move(settings));
}

std::unique_ptr<Firmware> makeVC0345(const FirmwareSettings& wanted) {
    VC0345Firmware::Settings settings;
    if (!wanted.flash.empty())
        settings.flash = readFlash(wanted.flash);
    settings.flashFile = wanted.keptFlash;
    return std::make_unique<VC0345Firmware>(std::move(settings));
}

// One row a controller.
constexpr struct {
    const char* name;
    std::unique_ptr<Firmware> (*make)(const FirmwareSettings& wanted);
} firmwares[] = {{"OV0570", makeOV0570}, {"VC0258", makeVC0258}, {"VC0345", makeVC0345}};

std::unique_ptr<Firmware> makeNamed(const FirmwareSettings& wanted) {
    for (const auto& row : firmwares) {
        if (wanted.chip == row.name)
            return row.make(wanted);
    }
    throw Plugin::ConfigurationPluginException(
        Utils::Format("simulated camera: there is no firmware of the controller %") % wanted.chip);
}

/// The registers of the time-of-flight controller as the file has them, low byte first, and from now on the other way
/// round. Those that change by themselves are not written.
void keepRegisters(Firmware& firmware, const std::string& path) {
    constexpr std::uint32_t count = 128;
    RegisterFile* const registers = firmware.tofRegisters();
    if (!registers) {
        throw Plugin::ConfigurationPluginException(
            "simulated camera: without a time-of-flight controller there are no registers to keep");
    }
    Bytes present;
    for (std::uint32_t address = 0; address < count; ++address) {
        present.push_back(static_cast<std::uint8_t>(registers->peek(address)));
        present.push_back(static_cast<std::uint8_t>(registers->peek(address) >> 8));
    }
    const auto kept = std::make_shared<KeptBytes>(path, std::move(present));
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

} // namespace

std::vector<std::string> firmwareNames() {
    std::vector<std::string> names;
    for (const auto& row : firmwares)
        names.emplace_back(row.name);
    return names;
}

std::unique_ptr<Firmware> makeFirmware(const FirmwareSettings& settings) {
    if (settings.chip.empty())
        return nullptr;
    std::unique_ptr<Firmware> firmware = makeNamed(settings);
    if (!settings.keptRegisters.empty())
        keepRegisters(*firmware, settings.keptRegisters);
    return firmware;
}

} // namespace Zentara::Simulated
