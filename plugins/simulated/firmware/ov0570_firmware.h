#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "plugins/simulated/firmware/factory_flash.h"
#include "plugins/simulated/firmware/firmware.h"
#include "plugins/simulated/firmware/kept_bytes.h"
#include "plugins/simulated/firmware/register_file.h"

namespace Zentara::Simulated {

/// A camera behind an OV0570 bridge: unit 6, control information, one packet for the registers of all devices
/// on the bus, and an EEPROM read and written in pieces of 32 bytes.
class OV0570Firmware final : public Firmware {
public:
    /// One device on the bus as the control information describes it.
    struct Device {
        std::uint8_t addressCode; ///< address bytes less one, 0 to 3
        std::uint8_t dataCode;    ///< data bytes less one, 0 to 3
        std::uint16_t busAddress;
        std::uint8_t flag = 0;
        std::uint8_t extra = 0;
    };

    struct Settings {
        Device bridge{2, 0, 0x0060};
        std::vector<Device> devices{{0, 1, 0x0021},
                                    {0, 0, 0x9711}}; ///< time-of-flight controller, colour sensor
        std::optional<std::uint8_t> claimedDevices;  ///< N of the reply, when it is to lie
        std::uint8_t infoByte = 0x5A;
        std::array<std::uint8_t, 4> version{1, 2, 3, 4}; ///< most significant first
        std::uint16_t word5 = 0x1111;
        std::uint16_t word8 = 0x2222;
        std::uint16_t word10 = 0x3333;
        std::uint16_t writableSize = 0x4000;
        std::uint16_t readableSize = 0xFFFF;
        Bytes flash = factoryFlash(0x57);
        std::string flashFile;    ///< where the flash is kept (UTF-8), empty for nowhere
        unsigned fpgaRounds = 0;  ///< rounds of two reads that the FPGA bits take to come up
        unsigned resetRounds = 0; ///< reads of the reset status that find it low
    };

    static constexpr std::uint32_t fpgaRegister = 0x21;
    static constexpr std::uint32_t resetRegister = 0x182845;

    explicit OV0570Firmware(Settings settings);

    [[nodiscard]] const Bytes& flash() const noexcept override { return memory.bytes(); }
    [[nodiscard]] const Bytes& configuration() const noexcept override { return memory.bytes(); }

    [[nodiscard]] RegisterFile* tofRegisters() noexcept override;

    /// The registers of device `index`: 0 the bridge, then the others in their order.
    [[nodiscard]] RegisterFile& registers(std::size_t index) { return files.at(index); }
    void setClaimedDevices(std::optional<std::uint8_t> count) { settings.claimedDevices = count; }

private:
    [[nodiscard]] Bytes controlInformation() const;
    [[nodiscard]] RegisterFile& addressed(const Bytes& packet);
    [[nodiscard]] const Device& device(std::size_t index) const;
    void writeRegister(const Bytes& packet);
    [[nodiscard]] Bytes readRegister(const Bytes& request);
    void setEeprom(const Bytes& packet);
    [[nodiscard]] bool asksEeprom(const Bytes& packet) const;
    [[nodiscard]] Bytes getEeprom(const Bytes& request);
    [[nodiscard]] Bytes readFlash();
    void writeFlash(const Bytes& packet);

    /// What a read needs before it: a range, state 2, state 3.
    enum class EepromState { Idle, Ranged, Prepared, Reading };

    Settings settings;
    KeptBytes memory;
    std::vector<RegisterFile> files;
    EepromState state = EepromState::Idle;
    std::uint32_t position = 0; ///< next byte of the range
    std::uint32_t last = 0;     ///< last byte of the range, inclusive
};

} // namespace Zentara::Simulated
