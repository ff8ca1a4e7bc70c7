#pragma once

#include <zentara/io/chip_clock.h>

namespace Zentara::IO {

/// The clock of every chip that was given no other. Safe.
[[nodiscard]] ChipClock& sleepingClock() noexcept;

} // namespace Zentara::IO
