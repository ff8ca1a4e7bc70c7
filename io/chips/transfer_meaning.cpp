#include "io/chips/transfer_meaning.h"

#include <cstdio>

#include "io/chips/ov0570_protocol.h"
#include "io/chips/vc0258_protocol.h"
#include "io/chips/vc0345_protocol.h"
#include "io/chips/vc_bridge_protocol.h"

namespace Zentara::IO {

namespace {

/// The bytes of a packet by position, 0 past its end: a damaged transfer is still printed.
class Fields {
public:
    explicit Fields(const std::vector<std::uint8_t>& packet) : bytes(packet) {}
    [[nodiscard]] unsigned operator[](std::size_t at) const { return at < bytes.size() ? bytes[at] : 0; }
    [[nodiscard]] unsigned pair(std::size_t at) const { return (*this)[at] | ((*this)[at + 1] << 8); }

private:
    const std::vector<std::uint8_t>& bytes;
};

/// 0x and at least two digits.
std::string hexText(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%02X", value);
    return text;
}

std::string wide(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04X", value);
    return text;
}

/// ":= VALUE" for a SET, "-> VALUE" for a GET that was answered.
std::string valueText(const ChipTransfer& transfer, const std::string& value) {
    if (!transfer.isGet)
        return " := " + value;
    return transfer.reply.empty() ? std::string() : " -> " + value;
}

// Positions in what follows are those of the packets in the chips' protocols.

std::string ov0570Register(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    return std::string(transfer.isGet ? "read" : "write") + " device " + std::to_string(sent[0] & 0x0F) +
           " register " + hexText(sent.pair(1) | (sent.pair(5) << 16)) +
           valueText(transfer, wide(value.pair(3)));
}

std::string ov0570Eeprom(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields reply(transfer.reply);
    if (transfer.isGet) {
        if (sent[0] != OV0570::EEPROM_ADDRESS_RANGE)
            return "EEPROM data";
        return "EEPROM sizes: writable " + wide(reply.pair(0)) + ", readable " + wide(reply.pair(2));
    }
    switch (sent[0]) {
    case OV0570::EEPROM_ADDRESS_RANGE:
        return "EEPROM range " + wide(sent.pair(1)) + " to " + wide(sent.pair(3));
    case OV0570::EEPROM_WRITE_DATA:
        return "EEPROM write";
    default:
        return "EEPROM state " + std::to_string(sent[0]);
    }
}

const char* bridgeSetting(unsigned address) {
    switch (address) {
    case VC::sensorControlSize:
        return " (sensor control size)";
    case VC0258::dmaControlSize:
        return " (DMA control size)";
    case VC0258::memoryArea:
        return " (memory area)";
    case VC0258::lastByteOrder:
        return " (last byte order)";
    default:
        return "";
    }
}

std::string bridgeRegister(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    return std::string(transfer.isGet ? "read" : "write") + " bridge register " + wide(sent.pair(1)) +
           valueText(transfer, hexText(value[3])) + bridgeSetting(sent.pair(1));
}

std::string tunnel(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    const bool two = (sent[2] & 0x0F) == 2;
    return std::string("I2C ") + (transfer.isGet ? "read" : "write") + " address " + hexText(sent[0] >> 1) +
           " register " + hexText(sent[3]) +
           valueText(transfer, two ? wide(value.pair(6)) : hexText(value[6])) +
           (two ? ", byte order " + std::to_string(sent[2] >> 4) : std::string());
}

std::string vc0345Tof(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    if (!transfer.isGet)
        return "write time-of-flight register " + hexText(sent[1]) + " := " + wide(sent.pair(2));
    return std::string("read time-of-flight register ") + hexText(sent[1] & 0x7F) +
           ((sent[1] & 0x80) ? ", high byte" : ", low byte") +
           valueText(transfer, hexText(Fields(transfer.reply)[3]));
}

std::string vc0345Rom(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    return std::string(transfer.isGet ? "read" : "write") + " ROM byte " + wide(sent.pair(1)) +
           valueText(transfer, hexText(value[3]));
}

} // namespace

std::string ov0570Meaning(const ChipTransfer& transfer) {
    switch (transfer.control) {
    case OV0570::informationControl:
        return "control information, " + std::to_string(Fields(transfer.reply)[OV0570::furtherDeviceCount]) +
               " further devices";
    case OV0570::registerControl:
        return ov0570Register(transfer);
    case OV0570::eepromControl:
        return ov0570Eeprom(transfer);
    default:
        return "unknown control";
    }
}

std::string vc0258Meaning(const ChipTransfer& transfer) {
    const Fields sent(transfer.sent);
    switch (transfer.control) {
    case VC::bridgeControl:
        return bridgeRegister(transfer);
    case VC0258::tunnelControl:
        return tunnel(transfer);
    case VC0258::dmaControl:
        return "DMA read " + wide(sent.pair(1)) + ", " + std::to_string(sent[3]) + " bytes";
    default:
        return "unknown control";
    }
}

std::string vc0345Meaning(const ChipTransfer& transfer) {
    switch (transfer.control) {
    case VC::bridgeControl:
        return bridgeRegister(transfer);
    case VC0345::romControl:
        return vc0345Rom(transfer);
    case VC0345::tofControl:
        return vc0345Tof(transfer);
    default:
        return "unknown control";
    }
}

} // namespace Zentara::IO
