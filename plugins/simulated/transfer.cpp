#include "plugins/simulated/transfer.h"

#include <cstdio>

namespace Zentara::Simulated {

namespace {

/// The bytes of a packet by position, 0 past its end: a damaged transfer is still printed.
class Fields {
public:
    explicit Fields(const Bytes& packet) : bytes(packet) {}
    [[nodiscard]] unsigned operator[](std::size_t at) const { return at < bytes.size() ? bytes[at] : 0; }
    [[nodiscard]] unsigned pair(std::size_t at) const { return (*this)[at] | ((*this)[at + 1] << 8); }

private:
    const Bytes& bytes;
};

std::string wide(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04X", value);
    return text;
}

/// ":= VALUE" for a SET, "-> VALUE" for a GET that was answered.
std::string valueText(const Transfer& transfer, const std::string& value) {
    if (!transfer.isGet)
        return " := " + value;
    return transfer.reply.empty() ? std::string() : " -> " + value;
}

std::string ov0570Register(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    return std::string(transfer.isGet ? "read" : "write") + " device " + std::to_string(sent[0] & 0x0F) +
           " register " + hexText(sent.pair(1) | (sent.pair(5) << 16)) +
           valueText(transfer, wide(value.pair(3)));
}

std::string ov0570Eeprom(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields reply(transfer.reply);
    if (transfer.isGet) {
        if (sent[0] != 1)
            return "EEPROM data";
        return "EEPROM sizes: writable " + wide(reply.pair(0)) + ", readable " + wide(reply.pair(2));
    }
    switch (sent[0]) {
    case 1:
        return "EEPROM range " + wide(sent.pair(1)) + " to " + wide(sent.pair(3));
    case 7:
        return "EEPROM write";
    default:
        return "EEPROM state " + std::to_string(sent[0]);
    }
}

std::string ov0570Meaning(const Transfer& transfer) {
    switch (transfer.control) {
    case 1:
        return "control information, " + std::to_string(Fields(transfer.reply)[15]) + " further devices";
    case 2:
        return ov0570Register(transfer);
    case 3:
        return ov0570Eeprom(transfer);
    default:
        return "unknown control";
    }
}

const char* bridgeSetting(unsigned address) {
    switch (address) {
    case 0x8102:
        return " (sensor control size)";
    case 0x810F:
        return " (DMA control size)";
    case 0x8112:
        return " (memory area)";
    case 0xB439:
        return " (last byte order)";
    default:
        return "";
    }
}

std::string bridgeRegister(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    return std::string(transfer.isGet ? "read" : "write") + " bridge register " + wide(sent.pair(1)) +
           valueText(transfer, hexText(value[3])) + bridgeSetting(sent.pair(1));
}

std::string tunnel(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    const bool two = (sent[2] & 0x0F) == 2;
    return std::string("I2C ") + (transfer.isGet ? "read" : "write") + " address " + hexText(sent[0] >> 1) +
           " register " + hexText(sent[3]) +
           valueText(transfer, two ? wide(value.pair(6)) : hexText(value[6])) +
           (two ? ", byte order " + std::to_string(sent[2] >> 4) : std::string());
}

std::string vc0258Meaning(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    switch (transfer.control) {
    case 4:
        return bridgeRegister(transfer);
    case 16:
        return tunnel(transfer);
    case 24:
        return "DMA read " + wide(sent.pair(1)) + ", " + std::to_string(sent[3]) + " bytes";
    default:
        return "unknown control";
    }
}

std::string vc0345Tof(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    if (!transfer.isGet)
        return "write time-of-flight register " + hexText(sent[1]) + " := " + wide(sent.pair(2));
    return std::string("read time-of-flight register ") + hexText(sent[1] & 0x7F) +
           ((sent[1] & 0x80) ? ", high byte" : ", low byte") +
           valueText(transfer, hexText(Fields(transfer.reply)[3]));
}

std::string vc0345Rom(const Transfer& transfer) {
    const Fields sent(transfer.sent);
    const Fields value(transfer.isGet ? transfer.reply : transfer.sent);
    return std::string(transfer.isGet ? "read" : "write") + " ROM byte " + wide(sent.pair(1)) +
           valueText(transfer, hexText(value[3]));
}

std::string vc0345Meaning(const Transfer& transfer) {
    switch (transfer.control) {
    case 4:
        return bridgeRegister(transfer);
    case 5:
        return vc0345Rom(transfer);
    case 16:
        return vc0345Tof(transfer);
    default:
        return "unknown control";
    }
}

} // namespace

std::string transferMeaning(ChipKind kind, const Transfer& transfer) {
    switch (kind) {
    case ChipKind::OV0570:
        return ov0570Meaning(transfer);
    case ChipKind::VC0258:
        return vc0258Meaning(transfer);
    case ChipKind::VC0345:
        return vc0345Meaning(transfer);
    }
    return {};
}

std::string bytesText(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, text.empty() ? "%02X" : " %02X", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

std::string transferLine(ChipKind kind, const Transfer& transfer) {
    std::string line = transfer.isGet ? "GET " : "SET ";
    line += std::to_string(transfer.unit) + '/' + std::to_string(transfer.control) + "  ";
    line += bytesText(transfer.sent);
    if (!transfer.reply.empty())
        line += " -> " + bytesText(transfer.reply);
    line += "  " + transferMeaning(kind, transfer);
    if (!transfer.failure.empty())
        line += "  FAILED: " + transfer.failure;
    return line;
}

} // namespace Zentara::Simulated
