#pragma once

#include <cstdint>

namespace Zentara::ROM {

/// Which temperature compensation the stored coefficients are for. The byte is stored as it is; what each
/// value means is known to the depth processing alone.
enum class TemperatureAlgorithmID : std::uint8_t { None = 0 };

/// Which cyclic error correction the stored coefficients are for, likewise.
enum class CyclicErrorAlgorithmID : std::uint8_t { None = 0 };

} // namespace Zentara::ROM
