#include "plugins/simulated/firmware/vc_bridge_registers.h"

#include <algorithm>

namespace Zentara::Simulated {

namespace {

constexpr ::GUID unitGuid{0xA917C75D, 0x4119, 0x11DA, {0xAE, 0x0E, 0x00, 0x0D, 0x56, 0xAC, 0x7B, 0x4C}};

std::uint16_t addressOf(const Bytes& packet) {
    return static_cast<std::uint16_t>(packet[1] | (packet[2] << 8));
}

} // namespace

const ::GUID& vcUnitGuid() noexcept { return unitGuid; }

void VCBridgeRegisters::set(const Firmware& model, const Bytes& packet) {
    if (packet[0] != 0x20)
        stall(model, "bridge opcode " + hexText(packet[0]) + " in a SET");
    values[addressOf(packet)] = packet[3];
}

Bytes VCBridgeRegisters::get(const Firmware& model, const Bytes& request) const {
    if (request[0] != 0x00)
        stall(model, "bridge opcode " + hexText(request[0]) + " in a GET");
    Bytes reply = request;
    reply[3] = value(addressOf(request));
    return reply;
}

std::uint8_t VCBridgeRegisters::value(std::uint16_t address) const {
    const auto found = values.find(address);
    return found == values.end() ? 0 : found->second;
}

Bytes VCBridgeRegisters::carried(std::uint16_t sizeRegister, Bytes packet) const {
    const std::size_t size = std::min<std::size_t>(value(sizeRegister), packet.size());
    std::fill(packet.begin() + static_cast<std::ptrdiff_t>(size), packet.end(), std::uint8_t{0});
    return packet;
}

} // namespace Zentara::Simulated
