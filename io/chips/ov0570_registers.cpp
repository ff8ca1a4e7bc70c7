#include "io/chips/ov0570_registers.h"

#include <array>
#include <utility>

#include <zentara/io/xu_interface.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "io/chips/little_endian.h"

namespace Zentara::IO {

using namespace OV0570;
using Chips::getPair;
using Chips::putPair;

namespace {

using RegisterPacket = std::array<std::uint8_t, registerPacketBytes>;

RegisterPacket packetFor(const OV0570DeviceID& device, unsigned index, unsigned reg) {
    RegisterPacket packet{};
    packet[0] = static_cast<std::uint8_t>(device.addressWidth << addressWidthShift | index);
    if (device.dataWidth != 0)
        packet[0] |= wideDataBit;
    putPair(packet, registerLow, reg);
    putPair(packet, registerHigh, reg >> 16);
    return packet;
}

/// The last device at the address, or the bridge.
unsigned lastDeviceAt(const OV0570Info& info, unsigned busAddress) {
    unsigned found = bridgeIndex;
    for (unsigned i = 0; i < info.devices.size(); ++i) {
        if (info.devices[i].busAddress == busAddress)
            found = i;
    }
    return found;
}

} // namespace

// Looked at twice: once loaded it costs no lock, and two threads that come first ask the bridge once.
const OV0570Info& OV0570Registers::info() {
    if (!loaded.load(std::memory_order_acquire)) {
        const Utils::Threading::AutoLock lock(infoMutex);
        if (!loaded.load(std::memory_order_relaxed)) {
            load();
            loaded.store(true, std::memory_order_release);
        }
    }
    return known;
}

void OV0570Registers::load() {
    std::array<std::uint8_t, OV0570Info::replyBytes> reply{};
    wire.recv(unit, informationControl, reply.size(), reply.data(), true);
    // Throws for a reply that claims too much, before anything is taken over from it.
    known = OV0570Info::fromReply(reply);
    tofIndex = lastDeviceAt(known, tofBusAddress);
    rgbIndex = lastDeviceAt(known, rgbBusAddress);
}

void OV0570Registers::write(unsigned device, unsigned reg, unsigned value) {
    const OV0570DeviceID& description = info().devices[device];
    reg &= description.addressMask();
    const bool toggled = isToggled(device, reg);
    RegisterPacket packet = packetFor(description, device, reg);
    putPair(packet, registerValue, (toggled ? value | toggle : value) & description.dataMask());
    wire.send(unit, registerControl, packet.size(), packet.data());
    // Only now: a write that failed must be repeated with the same toggle.
    if (toggled)
        toggle ^= 1;
}

unsigned OV0570Registers::read(unsigned device, unsigned reg) {
    const OV0570DeviceID& description = info().devices[device];
    RegisterPacket packet = packetFor(description, device, reg & description.addressMask());
    packet[0] |= readBit;
    wire.recv(unit, registerControl, packet.size(), packet.data(), false);
    return getPair(packet, registerValue);
}

unsigned OV0570Registers::tofDevice() {
    info();
    return tofIndex;
}

unsigned OV0570Registers::rgbDevice() {
    info();
    return rgbIndex;
}

unsigned OV0570Registers::deviceAt(unsigned busAddress) {
    const auto& devices = info().devices;
    for (unsigned i = bridgeIndex + 1; i < devices.size(); ++i) {
        if (devices[i].busAddress == busAddress)
            return i;
    }
    throw Plugin::IOPluginException("deviceAddress not found");
}

// Index 0 stands for a controller that is absent: then its calls reach the bridge, whose register 29 is
// another.
bool OV0570Registers::isToggled(unsigned device, unsigned reg) const noexcept {
    return device == tofIndex && device != bridgeIndex && reg == toggleRegister;
}

} // namespace Zentara::IO
