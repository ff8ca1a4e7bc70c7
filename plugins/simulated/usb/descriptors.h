#pragma once

#include <cstdint>
#include <string>

#include "plugins/simulated/usb/camera_shape.h"

namespace Zentara::Simulated {

[[nodiscard]] Bytes deviceDescriptor(const CameraShape& shape);

/// The configuration with all that it contains: interfaces, terminals and units, formats, endpoints.
[[nodiscard]] Bytes configurationDescriptor(const CameraShape& shape);

/// Of string 0 the list of languages, of the others vendor, product and serial number. Empty for one that is not there.
[[nodiscard]] Bytes stringDescriptor(const CameraShape& shape, std::uint8_t index);

// What the descriptors promise of the transfers.
inline constexpr std::uint32_t bulkPayload = 16384; ///< bytes of one payload with its header
inline constexpr std::uint32_t isochronousPayload = 3 * 1024;
inline constexpr std::uint32_t clockFrequency = 1'000'000; ///< of the time stamps of payloads

} // namespace Zentara::Simulated
