#pragma once

#include <array>
#include <cstdint>

#include <zentara/io/camera_chip.h>

namespace Zentara::IO {

/// A register and what is written to it.
struct RegisterWrite {
    unsigned reg;
    unsigned value;
};

/// The writes, in their order, that set a modulation frequency. `code` is the frequency in MHz in both bytes;
/// `k` is eight times the frequency, the phase steps being its halves: registers 3 to 6 take four phases, a step
/// apart.
[[nodiscard]] constexpr std::array<RegisterWrite, 11> modulationWrites(unsigned code, unsigned k) {
    return {{{0, code},
             {1, code},
             {47, k},
             {3, 0},
             {4, k / 2},
             {5, k},
             {6, 3 * k / 2},
             {7, 0},
             {8, 0},
             {9, 0},
             {10, 0}}};
}

/// Two registers that take the low and the high half of a meta command's value.
struct MetaRegisters {
    unsigned code;
    unsigned low;
    unsigned high;
};

/// Arguments of a raw command from here on are meta codes, below they are register numbers.
inline constexpr unsigned firstMetaCode = CameraChip::firstMetaCode;

/// All set bits of a strobe mask.
inline constexpr unsigned allStrobes = 0xFFFF;

} // namespace Zentara::IO
