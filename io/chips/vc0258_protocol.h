#pragma once

#include <cstddef>
#include <cstdint>

/// The bytes that only a VC0258 bridge speaks, and the registers behind it.
namespace Zentara::IO::VC0258 {

// Bridge registers that are settings.
inline constexpr unsigned dmaControlSize = 0x810F;
inline constexpr unsigned lastByteOrder = 0xB439; // of 2-byte tunnel transfers
inline constexpr unsigned memoryArea = 0x8112;
inline constexpr unsigned firmwareArea = 0;
inline constexpr unsigned configurationArea = 1;

// I2C tunnel packet, 9 bytes; a GET brings its data in the same place:
//
//     byte 0     the device's address shifted left, bit 0 set to write
//     byte 1     bytes of the register's address: 1
//     byte 2     data bytes in bits 0 to 3, the byte order from bit 4
//     byte 3     register
//     bytes 6-7  data
inline constexpr unsigned long tunnelControl = 16;
inline constexpr std::size_t tunnelPacketBytes = 9; // also the value of the sensor control size
inline constexpr std::size_t tunnelDevice = 0;      // 7-bit address shifted left by 1
inline constexpr std::uint8_t tunnelWrite = 1;      // in bit 0; a read has 0 there
inline constexpr std::size_t tunnelAddressBytes = 1;
inline constexpr std::size_t tunnelDataBytes = 2;
inline constexpr unsigned byteOrderShift = 4; // within tunnelDataBytes
inline constexpr std::size_t tunnelRegister = 3;
inline constexpr std::size_t tunnelData = 6; // low byte first, whatever the order

// The time-of-flight controller is written at one address and read at the next but one.
inline constexpr unsigned tofWriteAddress = 0x43 >> 1;
inline constexpr unsigned tofReadAddress = 0x46 >> 1;
inline constexpr unsigned tofWriteOrder = 1;
inline constexpr unsigned tofReadOrder = 0;
inline constexpr unsigned maxBusAddress = 0x7F;

inline constexpr unsigned microFrameRegister = 18;
inline constexpr unsigned strobeRegister26 = 26;
inline constexpr unsigned strobeRegister27 = 27;
inline constexpr unsigned toggleRegister = 29;
inline constexpr unsigned adcValueRegister = 30;
inline constexpr unsigned evenMicroFramesBit = 0x1000; // in register 26

/// The meta code of the modulation frequency.
inline constexpr unsigned modulationCode = 1004;

// Digital-to-analogue converter: four channels, one 12-bit word each.
inline constexpr unsigned dacAddress = 0x60;
inline constexpr unsigned dacRegisters[] = {0x58, 0x5A, 0x5C, 0x5E};
inline constexpr unsigned dacHighMask = 0x0F;
inline constexpr unsigned dacHighMark = 0x80;

// DMA read packet, 36 bytes: code, address (2, low byte first), length, then the bytes of the answer.
inline constexpr unsigned long dmaControl = 24;
inline constexpr std::size_t dmaPacketBytes = 36; // also the value of the DMA control size
inline constexpr std::uint8_t dmaRead = 0x50;
inline constexpr std::size_t dmaAddress = 1;
inline constexpr std::size_t dmaLength = 3;
inline constexpr std::size_t dmaData = 4;
inline constexpr unsigned dmaMaxBytes = 32;
static_assert(dmaData + dmaMaxBytes == dmaPacketBytes);

} // namespace Zentara::IO::VC0258
