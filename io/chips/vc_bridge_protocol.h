#pragma once

#include <cstddef>
#include <cstdint>

#include <zentara/guid.h>

/// The bytes that VC0258 and VC0345 bridges have in common.
namespace Zentara::IO::VC {

inline constexpr ::GUID unitGuid{
    0xA917C75D, 0x4119, 0x11DA, {0xAE, 0x0E, 0x00, 0x0D, 0x56, 0xAC, 0x7B, 0x4C}};
inline constexpr unsigned unit = 4;

// Bridge register packet: code, register (2, low byte first), value.
inline constexpr unsigned long bridgeControl = 4;
inline constexpr std::size_t bridgePacketBytes = 4;
inline constexpr std::uint8_t bridgeWrite = 0x20;
inline constexpr std::uint8_t bridgeRead = 0x00;
inline constexpr std::size_t bridgeAddress = 1; // low byte first
inline constexpr std::size_t bridgeValue = 3;

/// How many bytes control 16 carries.
inline constexpr unsigned sensorControlSize = 0x8102;

/// Register 0x21 of the time-of-flight controller is its firmware version.
inline constexpr unsigned tofVersionRegister = 0x21;

/// Bytes that a 16-bit memory address can reach.
inline constexpr unsigned memoryBytes = 0x10000;

} // namespace Zentara::IO::VC
