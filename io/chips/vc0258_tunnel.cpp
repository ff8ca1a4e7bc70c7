#include "io/chips/vc0258_tunnel.h"

#include <algorithm>
#include <array>

#include <zentara/io/xu_interface.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "io/chips/little_endian.h"

namespace Zentara::IO {

using namespace VC0258;
using Chips::getPair;
using Chips::putPair;

namespace {

using TunnelPacket = std::array<std::uint8_t, tunnelPacketBytes>;

TunnelPacket packetFor(unsigned device, unsigned reg, unsigned dataBytes, unsigned order) {
    TunnelPacket packet{};
    packet[tunnelDevice] = static_cast<std::uint8_t>(device << 1);
    packet[tunnelAddressBytes] = 1;
    packet[tunnelDataBytes] = static_cast<std::uint8_t>(dataBytes | order << byteOrderShift);
    packet[tunnelRegister] = static_cast<std::uint8_t>(reg);
    return packet;
}

// The bridge is told first how long the packets of the tunnel are; it is told again only after something else.
void send(XUInterface& wire, VCBridge& bridge, TunnelPacket packet) {
    bridge.bring(VC::sensorControlSize, tunnelPacketBytes);
    packet[tunnelDevice] |= tunnelWrite;
    wire.send(VC::unit, tunnelControl, packet.size(), packet.data());
}

TunnelPacket receive(XUInterface& wire, VCBridge& bridge, TunnelPacket packet) {
    bridge.bring(VC::sensorControlSize, tunnelPacketBytes);
    wire.recv(VC::unit, tunnelControl, packet.size(), packet.data(), false);
    return packet;
}

} // namespace

void VC0258Tunnel::setI2CData1A1D(unsigned device, unsigned reg, unsigned value) {
    TunnelPacket packet = packetFor(device, reg, 1, 0);
    packet[tunnelData] = static_cast<std::uint8_t>(value);
    send(wire, bridge, packet);
}

unsigned VC0258Tunnel::getI2CData1A1D(unsigned device, unsigned reg) {
    return receive(wire, bridge, packetFor(device, reg, 1, 0))[tunnelData];
}

// The order stands in the packet and in a setting of the bridge: the two must agree.
void VC0258Tunnel::setI2CData1A2D(unsigned device, unsigned reg, unsigned value, unsigned order) {
    bridge.bring(lastByteOrder, order);
    TunnelPacket packet = packetFor(device, reg, 2, order);
    putPair(packet, tunnelData, value);
    send(wire, bridge, packet);
}

unsigned VC0258Tunnel::getI2CData1A2D(unsigned device, unsigned reg, unsigned order) {
    bridge.bring(lastByteOrder, order);
    return getPair(receive(wire, bridge, packetFor(device, reg, 2, order)), tunnelData);
}

void VC0258Tunnel::getDMAData(unsigned address, std::uint8_t* out, unsigned length) {
    if (length < 1 || length > dmaMaxBytes)
        throw Plugin::IOPluginException("invalid DMA length");
    bridge.bring(dmaControlSize, dmaPacketBytes);
    std::array<std::uint8_t, dmaPacketBytes> packet{dmaRead};
    putPair(packet, dmaAddress, address);
    packet[dmaLength] = static_cast<std::uint8_t>(length);
    wire.recv(VC::unit, dmaControl, packet.size(), packet.data(), false);
    std::copy_n(packet.begin() + dmaData, length, out);
}

} // namespace Zentara::IO
