#include "plugins/simulated/firmware/vc0345_firmware.h"

#include <utility>

namespace Zentara::Simulated {

namespace {

constexpr std::uint32_t romControl = 5;
constexpr std::uint32_t tofControl = 16;
constexpr std::uint8_t highByte = 0x80;

std::size_t romAddress(const Bytes& packet) { return static_cast<std::size_t>(packet[1] | (packet[2] << 8)); }

Bytes wholeMemory(Bytes flash) {
    flash.resize(0x10000, 0xFF);
    return flash;
}

} // namespace

VC0345Firmware::VC0345Firmware(const Settings& initial)
    : memory(initial.flashFile, wholeMemory(initial.flash)) {
    tofFile.write(0x21, 0x2035);
}

std::optional<std::size_t> VC0345Firmware::length(std::uint32_t selector) const {
    switch (selector) {
    case VCBridgeRegisters::control:
    case romControl:
    case tofControl:
        return 4;
    default:
        return std::nullopt;
    }
}

void VC0345Firmware::set(std::uint32_t selector, const Bytes& packet) {
    switch (selector) {
    case VCBridgeRegisters::control:
        return bridgeRegisters.set(*this, packet);
    case romControl:
        return writeRom(packet);
    default:
        return writeTof(bridgeRegisters.carried(VCBridgeRegisters::sensorControlSize, packet));
    }
}

Bytes VC0345Firmware::get(std::uint32_t selector, const Bytes& request) {
    switch (selector) {
    case VCBridgeRegisters::control:
        return bridgeRegisters.get(*this, request);
    case romControl:
        return readRom(request);
    default:
        return readTof(bridgeRegisters.carried(VCBridgeRegisters::sensorControlSize, request));
    }
}

void VC0345Firmware::writeTof(const Bytes& packet) {
    if (packet[0] != 0x41)
        stall(*this, "code " + hexText(packet[0]) + " in a SET of a time-of-flight register");
    tofFile.write(packet[1], packet[2] | (std::uint32_t{packet[3]} << 8));
}

Bytes VC0345Firmware::readTof(const Bytes& request) {
    if (request[0] != 0x46)
        stall(*this, "code " + hexText(request[0]) + " in a GET of a time-of-flight register");
    const bool high = (request[1] & highByte) != 0;
    const std::uint32_t value = tofFile.read(request[1] & ~highByte & 0xFFU);
    Bytes reply = request;
    reply[3] = static_cast<std::uint8_t>(high ? value >> 8 : value);
    return bridgeRegisters.carried(VCBridgeRegisters::sensorControlSize, std::move(reply));
}

void VC0345Firmware::writeRom(const Bytes& packet) {
    if (packet[0] != 0xA1)
        stall(*this, "code " + hexText(packet[0]) + " in a SET of a ROM byte");
    memory.write(romAddress(packet), packet[3]);
}

Bytes VC0345Firmware::readRom(const Bytes& request) const {
    if (request[0] != 0xA0)
        stall(*this, "code " + hexText(request[0]) + " in a GET of a ROM byte");
    Bytes reply = request;
    reply[3] = memory.bytes()[romAddress(request)];
    return reply;
}

} // namespace Zentara::Simulated
