#include "io/chips/ov0570_flash.h"

#include <algorithm>

#include <zentara/io/xu_interface.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "io/chips/little_endian.h"

namespace Zentara::IO {

using namespace OV0570;
using Chips::getPair;
using Chips::putPair;
using Utils::Format;

namespace {

constexpr unsigned firstBadStart = 0xFFFF; // the last byte of 64 KiB can be read, but not begun with
constexpr unsigned addressSpace = 0x10000;

} // namespace

void OV0570Flash::setRange(unsigned start, unsigned end) {
    Packet packet{EEPROM_ADDRESS_RANGE};
    putPair(packet, rangeStart, start);
    putPair(packet, rangeEnd, end);
    send(packet);
}

OV0570Flash::Sizes OV0570Flash::sizes() {
    const Packet reply = receive(EEPROM_ADDRESS_RANGE);
    return {getPair(reply, writableSize), getPair(reply, readableSize)};
}

void OV0570Flash::writeData(const std::uint8_t* data, unsigned length) {
    if (length > eepromPieceBytes) {
        throw Plugin::ArgumentPluginException(Format("% bytes of EEPROM data in one packet, at most % fit") %
                                              length % static_cast<unsigned>(eepromPieceBytes));
    }
    if (length == 0)
        return; // a packet of nothing would write zeros
    Packet packet{EEPROM_WRITE_DATA};
    std::copy_n(data, length, packet.begin() + eepromData);
    send(packet);
}

void OV0570Flash::checkRange(unsigned start, unsigned length) {
    if (start >= firstBadStart)
        throw Plugin::IOPluginException("startAddress must be less than 0xFFFF");
    setRange(0, 0); // a part of the question: the bridge is asked for its sizes after a range
    const unsigned readable = sizes().readable;
    // Unsigned arithmetic that wraps: length 0 passes from start 1 on. The second test is for lengths so
    // great that the first wraps past them.
    if (readable + start < start + length - 1 || length > addressSpace)
        throw Plugin::IOPluginException(Format("length is out of range should be less than %") % readable);
}

void OV0570Flash::read(unsigned start, std::uint8_t* out, unsigned length) {
    setRange(start, start + length - 1);
    static_cast<void>(sizes()); // the bridge wants to be asked again before it reads
    enter(EEPROM_BEGIN_READ);
    enter(EEPROM_READ_DATA);
    // The bridge counts on by itself; its last answer may hold more than was asked for.
    for (unsigned done = 0; done < length;) {
        const Packet reply = receive(EEPROM_READ_DATA);
        const unsigned count = std::min<unsigned>(length - done, eepromPieceBytes);
        std::copy_n(reply.begin() + eepromData, count, out + done);
        done += count;
    }
    enter(EEPROM_END_READ);
}

void OV0570Flash::send(Packet packet) { wire.send(unit, eepromControl, packet.size(), packet.data()); }

OV0570Flash::Packet OV0570Flash::receive(EEPROMControlCodes code) {
    Packet packet{code};
    wire.recv(unit, eepromControl, packet.size(), packet.data(), true);
    return packet;
}

void OV0570Flash::enter(EEPROMControlCodes state) { send(Packet{state}); }

} // namespace Zentara::IO
