#pragma once

#include "plugins/simulated/firmware/factory_flash.h"
#include "plugins/simulated/firmware/firmware.h"
#include "plugins/simulated/firmware/kept_bytes.h"
#include "plugins/simulated/firmware/register_file.h"
#include "plugins/simulated/firmware/vc_bridge_registers.h"

namespace Zentara::Simulated {

/// A camera behind a VC0345 bridge: unit 4, bridge registers, 16-bit time-of-flight registers of which a read
/// brings one byte at a time, and a ROM of single bytes. As with the VC0258, a wrong size setting loses
/// bytes.
class VC0345Firmware final : public Firmware {
public:
    struct Settings {
        Bytes flash = factoryFlash(0x45);
        std::string flashFile; ///< where the flash is kept (UTF-8), empty for nowhere
    };

    explicit VC0345Firmware(const Settings& initial);

    [[nodiscard]] const Bytes& flash() const noexcept override { return memory.bytes(); }
    [[nodiscard]] const Bytes& configuration() const noexcept override { return memory.bytes(); }

    [[nodiscard]] VCBridgeRegisters& bridge() { return bridgeRegisters; }
    [[nodiscard]] RegisterFile* tofRegisters() noexcept override { return &tofFile; }
    [[nodiscard]] RegisterFile& tof() { return tofFile; }

private:
    [[nodiscard]] Bytes carried(Bytes packet) const {
        return bridgeRegisters.carried(VCBridgeRegisters::sensorControlSize, std::move(packet));
    }
    void writeTof(const Bytes& packet);
    [[nodiscard]] Bytes readTof(const Bytes& request);
    void writeRom(const Bytes& packet);
    [[nodiscard]] Bytes readRom(const Bytes& request) const;

    KeptBytes memory; ///< 64 KiB
    VCBridgeRegisters bridgeRegisters;
    RegisterFile tofFile{1, 2};
};

} // namespace Zentara::Simulated
