#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plugins/simulated/firmware/ov0570_firmware.h"

namespace Zentara::Simulated {

/// Which controller a simulated camera has, and what it has kept.
struct FirmwareSettings {
    std::string chip = "OV0570"; ///< empty for a camera without one
    std::string flash;           ///< a file (UTF-8) with the memory's bytes, empty for those of the factory
    std::string keptFlash;     ///< a file (UTF-8) in which the memory is kept from run to run, empty for none
    std::string keptRegisters; ///< the same for the registers of the time-of-flight controller

    // OV0570 only.
    std::vector<OV0570Firmware::Device> devices; ///< empty for the usual two
    std::optional<std::uint8_t> claimedDevices;
    unsigned fpgaRounds = 0;
    unsigned resetReads = 0;
};

/// The controllers that can be simulated.
[[nodiscard]] std::vector<std::string> firmwareNames();

/// The firmware of such a controller; null for a camera without one.
/// \throws Plugin::ConfigurationPluginException when a file cannot be read or written, or no firmware is known.
[[nodiscard]] std::unique_ptr<Firmware> makeFirmware(const FirmwareSettings& settings);

} // namespace Zentara::Simulated
