#pragma once

#include <cstddef>
#include <cstdint>

/// The bytes that only a VC0345 bridge speaks, and the registers behind it.
namespace Zentara::IO::VC0345 {

// Time-of-flight register packet. A write carries both bytes, a read brings one.
inline constexpr unsigned long tofControl = 16;
inline constexpr std::size_t tofPacketBytes = 4; // also the value of the sensor control size
inline constexpr std::uint8_t tofWrite = 0x41;
inline constexpr std::uint8_t tofRead = 0x46;
inline constexpr std::size_t tofRegister = 1;
inline constexpr std::size_t tofWriteValue = 2; // low byte first
inline constexpr std::size_t tofReadValue = 3;
inline constexpr unsigned highByte = 0x80; // ORed into the register to read its high byte

// ROM byte packet.
inline constexpr unsigned long romControl = 5;
inline constexpr std::size_t romPacketBytes = 4;
inline constexpr std::uint8_t romWrite = 0xA1;
inline constexpr std::uint8_t romRead = 0xA0;
inline constexpr std::size_t romAddress = 1; // low byte first
inline constexpr std::size_t romValue = 3;

inline constexpr unsigned strobeRegister = 13;
inline constexpr unsigned microFrameRegister = 39;
inline constexpr unsigned oddMicroFrames = 0x2A; // in the strobe register
inline constexpr unsigned evenMicroFrames = 0x2B;

} // namespace Zentara::IO::VC0345
