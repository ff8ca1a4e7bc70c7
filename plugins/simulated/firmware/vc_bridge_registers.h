#pragma once

#include <cstdint>
#include <map>

#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

/// The 8-bit registers inside a VC0258 or VC0345 bridge, behind control 4: [opcode, address low, address
/// high, value].
class VCBridgeRegisters {
public:
    static constexpr std::uint32_t control = 4;
    static constexpr std::size_t packetBytes = 4;
    static constexpr std::uint16_t sensorControlSize = 0x8102;
    static constexpr std::uint16_t dmaControlSize = 0x810F;
    static constexpr std::uint16_t memoryArea = 0x8112;
    static constexpr std::uint16_t lastByteOrder = 0xB439;

    [[nodiscard]] static bool isQuestion(const Bytes& packet) { return packet[0] == 0x00; }
    void set(const Firmware& model, const Bytes& packet);
    [[nodiscard]] Bytes get(const Firmware& model, const Bytes& request) const;

    [[nodiscard]] std::uint8_t value(std::uint16_t address) const;
    void setValue(std::uint16_t address, std::uint8_t value) { values[address] = value; }

    /// What the bridge carries of a control while the control's size register holds another number: the bytes
    /// past that size are lost and read as 0.
    [[nodiscard]] Bytes carried(std::uint16_t sizeRegister, Bytes packet) const;

private:
    std::map<std::uint16_t, std::uint8_t> values;
};

/// The extension unit of both bridges.
[[nodiscard]] const ::GUID& vcUnitGuid() noexcept;

} // namespace Zentara::Simulated
