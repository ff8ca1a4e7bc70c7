#include "plugins/simulated/firmware/vc0258_firmware.h"

#include <algorithm>
#include <utility>

namespace Zentara::Simulated {

namespace {

constexpr std::uint32_t tunnelControl = 16;
constexpr std::uint32_t memoryControl = 24;
constexpr std::size_t tunnelBytes = 9;
constexpr std::size_t memoryBytes = 36;
constexpr std::size_t memoryData = 4;
constexpr std::uint8_t tofAddress = 0x21;
constexpr std::uint8_t tofReadAddress = 0x23;

} // namespace

VC0258Firmware::VC0258Firmware(Settings initial)
    : Firmware("VC0258", vcUnitGuid(), 4,
               {{VCBridgeRegisters::control,
                 {VCBridgeRegisters::packetBytes,
                  [this](const Bytes& packet) { bridgeRegisters.set(*this, packet); },
                  [this](const Bytes& request) { return bridgeRegisters.get(*this, request); },
                  VCBridgeRegisters::isQuestion}},
                {tunnelControl,
                 {tunnelBytes, [this](const Bytes& packet) { writeTunnel(carried(packet)); },
                  [this](const Bytes& request) { return readTunnel(carried(request)); },
                  [](const Bytes& packet) { return (packet[0] & 1) == 0; }}},
                {memoryControl,
                 {memoryBytes, [this](const Bytes&) { stall(*this, "memory is read-only"); },
                  [this](const Bytes& request) {
                      return readMemory(bridgeRegisters.carried(VCBridgeRegisters::dmaControlSize, request));
                  },
                  [](const Bytes&) { return true; }}}}),
      settings(std::move(initial)), kept(settings.flashFile, settings.configuration) {
    for (const auto& [address, dataBytes] : settings.devices)
        files.emplace(address, RegisterFile(1, dataBytes));
    const auto tof = files.find(tofAddress);
    if (tof != files.end())
        tof->second.write(0x21, 0x2035);
}

RegisterFile* VC0258Firmware::tofRegisters() noexcept {
    const auto found = files.find(tofAddress);
    return found == files.end() ? nullptr : &found->second;
}

/// An I2C packet: bus address and, in bit 0, whether it is a write; address bytes; data bytes in the low half, byte order in
/// the high one; register; from byte 6 on the value.
RegisterFile& VC0258Firmware::addressed(const Bytes& packet) {
    const unsigned dataBytes = packet[2] & 0x0F;
    if (packet[1] != 1 || (dataBytes != 1 && dataBytes != 2))
        stall(*this, "I2C widths " + std::to_string(packet[1]) + " and " + std::to_string(dataBytes));
    std::uint8_t address = packet[0] >> 1;
    if (address == tofReadAddress && !(packet[0] & 1))
        address = tofAddress;
    const auto found = files.find(address);
    if (found == files.end())
        stall(*this, "no answer from bus address " + hexText(packet[0] >> 1));
    return found->second;
}

bool VC0258Firmware::exchanged(const Bytes& packet) const {
    return (packet[2] >> 4) != bridgeRegisters.value(VCBridgeRegisters::lastByteOrder);
}

void VC0258Firmware::writeTunnel(const Bytes& packet) {
    if (!(packet[0] & 1))
        stall(*this, "a SET of an I2C read packet");
    RegisterFile& file = addressed(packet);
    if ((packet[2] & 0x0F) == 1)
        return file.write(packet[3], packet[6]);
    const bool swap = exchanged(packet);
    file.write(packet[3], packet[swap ? 7 : 6] | (std::uint32_t{packet[swap ? 6 : 7]} << 8));
}

Bytes VC0258Firmware::readTunnel(const Bytes& request) {
    if (request[0] & 1)
        stall(*this, "a GET of an I2C write packet");
    const std::uint32_t value = addressed(request).read(request[3]);
    Bytes reply = request;
    reply[6] = static_cast<std::uint8_t>(value);
    if ((request[2] & 0x0F) == 2) {
        reply[7] = static_cast<std::uint8_t>(value >> 8);
        if (exchanged(request))
            std::swap(reply[6], reply[7]);
    }
    return carried(std::move(reply));
}

/// A request: code, address (low byte first), count; the bytes follow in the reply. Which of the two memories it is, is a
/// setting of the bridge.
Bytes VC0258Firmware::readMemory(const Bytes& request) const {
    const std::size_t count = request[3];
    if (request[0] != 0x50 || count < 1 || count > memoryBytes - memoryData)
        stall(*this, "DMA code " + hexText(request[0]) + " for " + std::to_string(count) + " bytes");
    const Bytes& memory =
        bridgeRegisters.value(VCBridgeRegisters::memoryArea) == 0 ? settings.flash : kept.bytes();
    const std::size_t start = static_cast<std::size_t>(request[1] | (request[2] << 8));
    Bytes reply = request;
    for (std::size_t i = 0; i < count; ++i)
        reply[memoryData + i] = start + i < memory.size() ? memory[start + i] : 0xFF;
    return bridgeRegisters.carried(VCBridgeRegisters::dmaControlSize, std::move(reply));
}

} // namespace Zentara::Simulated
