#pragma once

#include <cstdint>
#include <map>

#include "plugins/simulated/firmware/factory_flash.h"
#include "plugins/simulated/firmware/firmware.h"
#include "plugins/simulated/firmware/kept_bytes.h"
#include "plugins/simulated/firmware/register_file.h"
#include "plugins/simulated/firmware/vc_bridge_registers.h"

namespace Zentara::Simulated {

/// A camera behind a VC0258 bridge: unit 4, bridge registers, an I2C tunnel, and memory read by DMA.
///
/// The bridge does what its settings say, right or wrong: a control longer than its size register loses its
/// tail, and a 2-byte transfer whose order bit differs from the order register arrives with its bytes
/// exchanged.
class VC0258Firmware final : public Firmware {
public:
    struct Settings {
        Bytes flash = patternFlash(0x28);
        Bytes configuration = factoryFlash(0x82);
        std::string flashFile; ///< where the configuration memory is kept (UTF-8), empty for nowhere
        /// Data bytes of each device on the bus by 7-bit address. The time-of-flight controller is written as
        /// 0x21 and read as 0x23.
        std::map<std::uint8_t, unsigned> devices{{0x21, 2}, {0x60, 2}, {0x30, 1}};
    };

    explicit VC0258Firmware(Settings settings);

    [[nodiscard]] const Bytes& flash() const noexcept override { return settings.flash; }
    [[nodiscard]] const Bytes& configuration() const noexcept override { return kept.bytes(); }

    [[nodiscard]] RegisterFile* tofRegisters() noexcept override;

    [[nodiscard]] VCBridgeRegisters& bridge() { return bridgeRegisters; }
    [[nodiscard]] RegisterFile& device(std::uint8_t address) { return files.at(address); }

private:
    [[nodiscard]] RegisterFile& addressed(const Bytes& packet);
    [[nodiscard]] bool exchanged(const Bytes& packet) const;
    [[nodiscard]] Bytes carried(Bytes packet) const {
        return bridgeRegisters.carried(VCBridgeRegisters::sensorControlSize, std::move(packet));
    }
    void writeTunnel(const Bytes& packet);
    [[nodiscard]] Bytes readTunnel(const Bytes& request);
    [[nodiscard]] Bytes readMemory(const Bytes& request) const;

    Settings settings;
    KeptBytes kept; ///< the configuration memory; a host cannot write it
    VCBridgeRegisters bridgeRegisters;
    std::map<std::uint8_t, RegisterFile> files;
};

} // namespace Zentara::Simulated
