#pragma once

#include <cstdint>

#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>

#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

/// Where a camera's storage lies in its controller's memory of 64 KiB; its header stands at the start.
/// It stands at 0 because of an area that starts at N the last N bytes are never used.
inline constexpr std::uint32_t romStart = 0;
inline constexpr std::uint32_t romSize = 0x4000;
inline constexpr std::uint32_t romChunkSize = 256;

/// What every camera measured of itself: the depth lens for frames of 320 x 240, and the way to the colour camera.
inline constexpr CameraIntrinsics factoryDepthLens{320,    240,   224.5F, 224.25F, 160.5F,  119.75F,
                                                   -0.17F, 0.11F, -0.02F, 0.0005F, -0.0003F};
inline constexpr ExtrinsicParametersInternal factoryExtrinsics{1, 0, 0, 0,     1,     0,
                                                               0, 0, 1, 26.5F, 0.25F, -1.5F};

/// The memory as a camera leaves the factory: `patternFlash`, and in it a storage with one section of each
/// kind, all as the camera of that seed was measured.
[[nodiscard]] Bytes factoryFlash(std::uint8_t seed);

} // namespace Zentara::Simulated
