#pragma once

#include <cstdint>

#include <zentara/hardware_ids.h>

namespace Zentara::Core {

/// What a descriptor store knows about a camera as a whole. A copyable value.
struct DeviceDescriptor {
    HardwareIDs hardwareIds;
    std::uint64_t flags = 0;
    std::int32_t capabilities = 0;
};

} // namespace Zentara::Core
