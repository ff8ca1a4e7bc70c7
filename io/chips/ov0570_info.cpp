#include <zentara/io/ov0570_info.h>

#include <algorithm>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "io/chips/little_endian.h"
#include "io/chips/ov0570_protocol.h"

namespace Zentara::IO {

using namespace OV0570;
using Chips::getPair;

namespace {

OV0570DeviceID describedBy(std::uint8_t descriptor) {
    OV0570DeviceID device;
    device.addressWidth = descriptor >> 6;
    device.dataWidth = descriptor >> 4 & 3;
    device.flag = descriptor & 1;
    return device;
}

OV0570DeviceID bridgeOf(const std::array<std::uint8_t, OV0570Info::replyBytes>& reply) {
    OV0570DeviceID bridge = describedBy(reply[bridgeDescriptor]);
    bridge.busAddress = getPair(reply, bridgeAddress);
    return bridge;
}

// The further devices tell their address high byte first, other than the bridge.
OV0570DeviceID furtherDevice(const std::array<std::uint8_t, OV0570Info::replyBytes>& reply, std::size_t at) {
    OV0570DeviceID device = describedBy(reply[at]);
    device.busAddress =
        static_cast<std::uint16_t>(reply[at + deviceAddress] << 8 | reply[at + deviceAddress + 1]);
    device.extra = reply[at + deviceExtra];
    return device;
}

} // namespace

OV0570Info OV0570Info::fromReply(const std::array<std::uint8_t, replyBytes>& reply) {
    const unsigned count = reply[furtherDeviceCount];
    if (count > maxFurtherDevices) {
        throw Plugin::IOPluginException(
            Utils::Format("control information claims % further devices, its % bytes hold at most %") %
            count % static_cast<unsigned>(replyBytes) % static_cast<unsigned>(maxFurtherDevices));
    }
    // Copied as they came, also what has no meaning to the host.
    OV0570Info result;
    result.info = reply[infoByte];
    std::copy_n(reply.begin() + versionBytes, result.firmwareVersion.bytes.size(),
                result.firmwareVersion.bytes.begin());
    std::transform(std::begin(keptWords), std::end(keptWords), result.words.begin(),
                   [&reply](std::size_t at) { return getPair(reply, at); });
    result.devices.push_back(bridgeOf(reply));
    for (unsigned i = 0; i < count; ++i)
        result.devices.push_back(furtherDevice(reply, furtherDevices + i * furtherDeviceBytes));
    return result;
}

} // namespace Zentara::IO
