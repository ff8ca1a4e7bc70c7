#include "plugins/simulated/firmware/vc0345_firmware.h"

#include <utility>

namespace Zentara::Simulated {

namespace {

constexpr std::uint32_t romControl = 5;
constexpr std::uint32_t tofControl = 16;
constexpr std::size_t packetBytes = 4;
constexpr std::uint8_t highByte = 0x80;

std::size_t romAddress(const Bytes& packet) { return static_cast<std::size_t>(packet[1] | (packet[2] << 8)); }

Bytes wholeMemory(Bytes flash) {
    flash.resize(0x10000, 0xFF);
    return flash;
}

} // namespace

VC0345Firmware::VC0345Firmware(const Settings& initial)
    : Firmware("VC0345", vcUnitGuid(), 4,
               {{VCBridgeRegisters::control,
                 {VCBridgeRegisters::packetBytes,
                  [this](const Bytes& packet) { bridgeRegisters.set(*this, packet); },
                  [this](const Bytes& request) { return bridgeRegisters.get(*this, request); },
                  VCBridgeRegisters::isQuestion}},
                {romControl,
                 {packetBytes, [this](const Bytes& packet) { writeRom(packet); },
                  [this](const Bytes& request) { return readRom(request); },
                  [](const Bytes& packet) { return packet[0] == 0xA0; }}},
                {tofControl,
                 {packetBytes, [this](const Bytes& packet) { writeTof(carried(packet)); },
                  [this](const Bytes& request) { return readTof(carried(request)); },
                  [](const Bytes& packet) { return packet[0] == 0x46; }}}}),
      memory(initial.flashFile, wholeMemory(initial.flash)) {
    tofFile.write(0x21, 0x2035);
}

// A write takes the whole value, low byte first; a read brings one byte of it, the high one where bit 7 of the register's
// number is set.
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
    return carried(std::move(reply));
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
