#pragma once

#include <cstdint>

#include "utils/platform/posix/deadline.h"

namespace Zentara::Utils::Platform {

/// Sleeps while the word is `value`. True when it is worth looking again, false once the deadline has passed.
bool futexWait(const void* word, std::uint32_t value, const Deadline& deadline) noexcept;

/// The kernel takes the address as a mere number: with the word gone it finds no sleeper, or wakes one that looks and
/// sleeps again.
void futexWake(const void* word, int count) noexcept;

} // namespace Zentara::Utils::Platform
