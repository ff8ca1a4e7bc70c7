#include "plugins/simulated/firmware/ov0570_firmware.h"

#include <algorithm>
#include <utility>

namespace Zentara::Simulated {

namespace {

constexpr ::GUID unitGuid{0xDD880F8A, 0x1CBA, 0x4954, {0x8A, 0x25, 0xF7, 0x87, 0x59, 0x67, 0xF0, 0xF7}};
constexpr std::uint32_t informationControl = 1;
constexpr std::uint32_t registerControl = 2;
constexpr std::uint32_t eepromControl = 3;
constexpr std::size_t informationBytes = 64;
constexpr std::size_t registerBytes = 7;
constexpr std::size_t pieceBytes = 32;
constexpr std::size_t firstFurtherDevice = 16;
constexpr std::size_t furtherDeviceBytes = 4;
constexpr std::uint8_t resetDone = 0x08;
constexpr std::uint16_t tofBusAddress = 0x0021;

std::uint16_t littleEndian(const Bytes& packet, std::size_t at) {
    return static_cast<std::uint16_t>(packet[at] | (packet[at + 1] << 8));
}

void putLittleEndian(Bytes& packet, std::size_t at, std::uint32_t value) {
    packet[at] = static_cast<std::uint8_t>(value);
    packet[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

std::uint8_t descriptor(const OV0570Firmware::Device& device) {
    return static_cast<std::uint8_t>((device.addressCode << 6) | (device.dataCode << 4) | (device.flag & 1));
}

RegisterFile fileOf(const OV0570Firmware::Device& device) {
    return {device.addressCode + 1U, device.dataCode + 1U};
}

} // namespace

OV0570Firmware::OV0570Firmware(Settings initial)
    : Firmware(
          "OV0570", unitGuid, 6,
          {{informationControl,
            {informationBytes, [this](const Bytes&) { stall(*this, "the control information is read-only"); },
             [this](const Bytes&) { return controlInformation(); }, [](const Bytes&) { return true; }, true}},
           {registerControl,
            {registerBytes, [this](const Bytes& packet) { writeRegister(packet); },
             [this](const Bytes& request) { return readRegister(request); },
             [](const Bytes& packet) { return (packet[0] & 0x80) != 0; }}},
           {eepromControl,
            {1 + pieceBytes, [this](const Bytes& packet) { setEeprom(packet); },
             [this](const Bytes& request) { return getEeprom(request); },
             [this](const Bytes& packet) { return asksEeprom(packet); }}}}),
      settings(std::move(initial)), memory(settings.flashFile, settings.flash) {
    // The controller says by bits of one register whether the FPGA is ready, the bridge by a pin whether it is out of reset.
    // Values that are queued are read first, one by one, so that both take their time.
    files.push_back(fileOf(settings.bridge));
    for (const Device& device : settings.devices) {
        files.push_back(fileOf(device));
        if (device.busAddress == tofBusAddress) {
            files.back().write(fpgaRegister, 0x2035);
            for (unsigned read = 0; read < 2 * settings.fpgaRounds; ++read)
                files.back().queueRead(fpgaRegister, 0x1035);
        }
    }
    files.front().write(resetRegister, resetDone);
    for (unsigned read = 0; read < settings.resetRounds; ++read)
        files.front().queueRead(resetRegister, 0);
}

RegisterFile* OV0570Firmware::tofRegisters() noexcept {
    RegisterFile* found = nullptr;
    for (std::size_t i = 0; i < settings.devices.size(); ++i)
        found = settings.devices[i].busAddress == tofBusAddress ? &files[i + 1] : found;
    return found;
}

/// 64 bytes: 1 to 4 the version, 12 to 14 what the bridge itself is as a device, 15 how many further ones there are, and
/// from 16 on four bytes for each of those.
Bytes OV0570Firmware::controlInformation() const {
    Bytes reply(informationBytes);
    reply[0] = settings.infoByte;
    std::copy(settings.version.begin(), settings.version.end(), reply.begin() + 1);
    putLittleEndian(reply, 5, settings.word5);
    putLittleEndian(reply, 8, settings.word8);
    putLittleEndian(reply, 10, settings.word10);
    reply[12] = descriptor(settings.bridge);
    putLittleEndian(reply, 13, settings.bridge.busAddress);
    reply[15] = settings.claimedDevices.value_or(static_cast<std::uint8_t>(settings.devices.size()));
    std::size_t at = firstFurtherDevice;
    for (const Device& device : settings.devices) {
        if (at == informationBytes)
            break;
        // The further devices tell their address high byte first, the bridge its own low byte first.
        reply[at] = descriptor(device);
        reply[at + 1] = static_cast<std::uint8_t>(device.busAddress >> 8);
        reply[at + 2] = static_cast<std::uint8_t>(device.busAddress);
        reply[at + 3] = device.extra;
        at += furtherDeviceBytes;
    }
    return reply;
}

const OV0570Firmware::Device& OV0570Firmware::device(std::size_t index) const {
    return index == 0 ? settings.bridge : settings.devices.at(index - 1);
}

/// The first byte of a register packet: bits 0 to 3 the device, 4 whether its data has more than one byte, 5 and 6 its
/// address bytes less one, 7 set for a read. The bridge goes by its own list, and stalls where the packet says otherwise.
RegisterFile& OV0570Firmware::addressed(const Bytes& packet) {
    const std::size_t index = packet[0] & 0x0F;
    if (index >= files.size())
        stall(*this, "no device " + std::to_string(index));
    if (((packet[0] >> 5) & 3) != device(index).addressCode)
        stall(*this, "wrong address width for device " + std::to_string(index));
    if (((packet[0] >> 4) & 1) != (device(index).dataCode != 0))
        stall(*this, "wrong data width for device " + std::to_string(index));
    return files[index];
}

namespace {

/// Its low half stands before the value, its high half behind it.
std::uint32_t registerAddress(const Bytes& packet) {
    return littleEndian(packet, 1) | (std::uint32_t{littleEndian(packet, 5)} << 16);
}

} // namespace

void OV0570Firmware::writeRegister(const Bytes& packet) {
    if (packet[0] & 0x80)
        stall(*this, "a SET of a read packet");
    addressed(packet).write(registerAddress(packet), littleEndian(packet, 3));
}

Bytes OV0570Firmware::readRegister(const Bytes& request) {
    if (!(request[0] & 0x80))
        stall(*this, "a GET of a write packet");
    Bytes reply = request;
    putLittleEndian(reply, 3, addressed(request).read(registerAddress(request)));
    return reply;
}

/// A read: range (1), prepare (2), read (3), then pieces by GET, end (5). A write: range (1), then pieces (7).
void OV0570Firmware::setEeprom(const Bytes& packet) {
    const bool ranged = state == EepromState::Ranged;
    switch (packet[0]) {
    case 1:
        position = littleEndian(packet, 1);
        last = littleEndian(packet, 3);
        state = EepromState::Ranged;
        return;
    case 2:
        if (!ranged)
            stall(*this, "EEPROM state 2 without an address range");
        state = EepromState::Prepared;
        return;
    case 3:
        if (state != EepromState::Prepared)
            stall(*this, "EEPROM state 3 before state 2");
        state = EepromState::Reading;
        return;
    case 5:
        state = EepromState::Idle;
        return;
    case 7:
        return writeFlash(packet);
    default:
        stall(*this, "EEPROM code " + std::to_string(packet[0]));
    }
}

/// A question and a range of nothing look alike; where a range is set already, nobody sets that one.
bool OV0570Firmware::asksEeprom(const Bytes& packet) const {
    const bool rangeOfNothing =
        std::all_of(packet.begin() + 1, packet.begin() + 5, [](std::uint8_t byte) { return byte == 0; });
    return (packet[0] == 1 && state == EepromState::Ranged && rangeOfNothing) ||
           (packet[0] == 3 && state == EepromState::Reading);
}

Bytes OV0570Firmware::getEeprom(const Bytes& request) {
    // A host that cannot ask gets what its last SET has prepared.
    const std::uint8_t code = request[0] != 0 ? request[0] : state == EepromState::Reading ? 3 : 1;
    if (code == 1) {
        Bytes reply(1 + pieceBytes);
        putLittleEndian(reply, 0, settings.writableSize);
        putLittleEndian(reply, 2, settings.readableSize);
        return reply;
    }
    if (code != 3 || state != EepromState::Reading)
        stall(*this, "EEPROM read outside a read sequence");
    return readFlash();
}

Bytes OV0570Firmware::readFlash() {
    if (position > last)
        stall(*this, "EEPROM read past the end of its range");
    Bytes reply(1 + pieceBytes);
    for (std::size_t i = 1; i <= pieceBytes && position <= last; ++i, ++position)
        reply[i] = position < memory.bytes().size() ? memory.bytes()[position] : 0xFF;
    return reply;
}

void OV0570Firmware::writeFlash(const Bytes& packet) {
    if (state != EepromState::Ranged || position > last)
        stall(*this, "EEPROM write without a range to write to");
    for (std::size_t i = 1; i <= pieceBytes && position <= last; ++i, ++position)
        memory.write(position, packet[i]);
}

} // namespace Zentara::Simulated
