#pragma once

#include <cstdint>

#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

/// Where a camera's storage lies in its controller's memory of 64 KiB; its header stands at the start.
/// It stands at 0 because of an area that starts at N the last N bytes are never used.
inline constexpr std::uint32_t romStart = 0;
inline constexpr std::uint32_t romSize = 0x4000;
inline constexpr std::uint32_t romChunkSize = 256;

/// The memory as a camera leaves the factory: `patternFlash`, and in it a storage with one section of each
/// kind, all as the camera of that seed was measured.
[[nodiscard]] Bytes factoryFlash(std::uint8_t seed);

} // namespace Zentara::Simulated
