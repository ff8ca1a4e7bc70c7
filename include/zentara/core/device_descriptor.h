#pragma once

#include <cstdint>

#include <zentara/hardware_ids.h>

namespace Zentara::Core {

/// What a descriptor store knows about a camera as a whole. A copyable value. Separate.
struct DeviceDescriptor {
    HardwareIDs hardwareIds;       ///< of the camera; the interface number is each node's own
    std::uint64_t flags = 0;       ///< for the device plug-in, which knows what the bits mean
    std::int32_t capabilities = 0; ///< for the host, as the description has them
};

} // namespace Zentara::Core
