#pragma once

#include <array>
#include <cstdint>

#include "io/chips/ov0570_protocol.h"

namespace Zentara::IO {

class XUInterface;

/// The EEPROM and flash behind an OV0570 bridge. The caller holds the chip's mutex.
class OV0570Flash {
public:
    struct Sizes {
        unsigned writable;
        unsigned readable;
    };

    explicit OV0570Flash(XUInterface& chip) : wire(chip) {}

    /// Both ends are inclusive and keep their low 16 bits.
    void setRange(unsigned start, unsigned end);
    [[nodiscard]] Sizes sizes();
    /// Sends nothing for no bytes; else the bridge gets 32, the rest of them zeros, and writes as far as the
    /// range reaches. \throws ArgumentPluginException for more than 32 bytes.
    void writeData(const std::uint8_t* data, unsigned length);

    /// \throws IOPluginException when the flash cannot give these bytes; asks it how many it has.
    void checkRange(unsigned start, unsigned length);
    /// Reads a range that was checked.
    void read(unsigned start, std::uint8_t* out, unsigned length);

private:
    using Packet = std::array<std::uint8_t, OV0570::eepromPacketBytes>;

    void send(Packet packet);
    [[nodiscard]] Packet receive(OV0570::EEPROMControlCodes code);
    void enter(OV0570::EEPROMControlCodes state);

    XUInterface& wire;
};

} // namespace Zentara::IO
