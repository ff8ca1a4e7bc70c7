#pragma once

#include <cstdint>

namespace Zentara {

/// What may be done with a parameter: bit 0 set means that it can be written, bit 1 that it can be read.
/// Parameters that can be written may have a range. Parameter back-ends say it, each for itself: another number
/// that one says is handed on as it is.
enum AccessMode : std::int32_t {
    AccessMode_NONE = 0,       ///< neither
    AccessMode_WRITE = 1,      ///< an order: what was written cannot be asked for
    AccessMode_READ = 2,       ///< a measurement, or what follows from other parameters
    AccessMode_READ_WRITE = 3, ///< a setting
};

} // namespace Zentara
