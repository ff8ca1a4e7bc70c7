#pragma once

#include <cstdint>

namespace Zentara {

/// What may be done with a parameter: bit 0 set means that it can be written, bit 1 that it can be read.
/// Parameters that can be written may have a range.
enum AccessMode : std::int32_t {
    AccessMode_NONE = 0,
    AccessMode_WRITE = 1,
    AccessMode_READ = 2,
    AccessMode_READ_WRITE = 3,
};

} // namespace Zentara
