#pragma once

#include <cstddef>
#include <cstdint>

#include <zentara/guid.h>
#include <zentara/io/ov0570_info.h>

/// The bytes that an OV0570 bridge speaks on its extension unit.
namespace Zentara::IO::OV0570 {

inline constexpr ::GUID unitGuid{
    0xDD880F8A, 0x1CBA, 0x4954, {0x8A, 0x25, 0xF7, 0x87, 0x59, 0x67, 0xF0, 0xF7}};
inline constexpr unsigned unit = 6;

// Controls. Information and EEPROM are received with the flag, registers without.
inline constexpr unsigned long informationControl = 1;
inline constexpr unsigned long registerControl = 2;
inline constexpr unsigned long eepromControl = 3;

// Control information: the bridge, then four bytes for each further device: a descriptor, the bus address, one more. In a
// descriptor bits 6 and 7 are the address width's code, bits 4 and 5 the data width's, bit 0 a flag.
inline constexpr std::size_t infoByte = 0;
inline constexpr std::size_t versionBytes = 1;
inline constexpr std::size_t keptWords[] = {5, 8, 10};
inline constexpr std::size_t bridgeDescriptor = 12;
inline constexpr std::size_t bridgeAddress = 13; // low byte first
inline constexpr std::size_t furtherDeviceCount = 15;
inline constexpr std::size_t furtherDevices = 16;
inline constexpr std::size_t furtherDeviceBytes = 4;
inline constexpr std::size_t deviceAddress = 1; // within a further device, HIGH byte first
inline constexpr std::size_t deviceExtra = 3;
static_assert(furtherDevices + OV0570Info::maxFurtherDevices * furtherDeviceBytes == OV0570Info::replyBytes);

inline constexpr unsigned bridgeIndex = 0;
inline constexpr unsigned tofBusAddress = 0x0021;
inline constexpr unsigned rgbBusAddress = 0x9711;

// Register packet, numbers low byte first; a GET's value is in the answer:
//
//     byte 0     bit 7 read, bits 5 and 6 the address width's code, bit 4 two data bytes, bits 0 to 3 the device's index
//     bytes 1-2  register, low half
//     bytes 3-4  value
//     bytes 5-6  register, high half: 0 for devices with 16-bit addresses and less
inline constexpr std::size_t registerPacketBytes = 7;
inline constexpr std::uint8_t readBit = 0x80;
inline constexpr unsigned addressWidthShift = 5;
inline constexpr std::uint8_t wideDataBit = 0x10;
inline constexpr std::size_t registerLow = 1; // bits 0 to 15
inline constexpr std::size_t registerValue = 3;
inline constexpr std::size_t registerHigh = 5; // bits 16 to 31

// EEPROM packet: a code, then up to 32 bytes. To read: range, sizes, begin, read data, one GET for each 32 bytes, end.
// To write: range, then write data for each 32 bytes.
inline constexpr std::size_t eepromPacketBytes = 33;
inline constexpr std::size_t eepromPieceBytes = 32;
inline constexpr std::size_t rangeStart = 1;
inline constexpr std::size_t rangeEnd = 3;     // inclusive
inline constexpr std::size_t writableSize = 0; // a query's reply has no code in front
inline constexpr std::size_t readableSize = 2;
inline constexpr std::size_t eepromData = 1;

/// First byte of an EEPROM packet.
enum EEPROMControlCodes : std::uint8_t {
    EEPROM_ADDRESS_RANGE = 1, ///< SET: address range; GET: sizes
    EEPROM_BEGIN_READ = 2,    ///< SET
    EEPROM_READ_DATA = 3,     ///< SET: go on to reading; GET: the next 32 bytes
    EEPROM_END_READ = 5,      ///< SET
    EEPROM_WRITE_DATA = 7,    ///< SET: always 32 bytes, of which the range takes what it wants
};

// Registers of the time-of-flight controller that mean something to the host.
inline constexpr unsigned toggleRegister = 29;
inline constexpr unsigned adcValueRegister = 30;
inline constexpr unsigned statusRegister = 0x21; // firmware version, and the FPGA's state in its high bits
inline constexpr unsigned fpgaWaitMask = 0xB000;
inline constexpr unsigned fpgaCheckMask = 0xF000;
inline constexpr unsigned fpgaReady = 0x2000;

/// The meta code of the modulation frequency.
inline constexpr unsigned modulationCode = 1005;

// The bridge's pin that goes high when the FPGA is out of reset.
inline constexpr unsigned gpioRegister = 0x182845;
inline constexpr unsigned gpio3Bit = 1U << 3;

} // namespace Zentara::IO::OV0570
