#pragma once

#include <cstdint>

namespace Zentara::Utils::Platform {

/// Waiting on the first 32 bits of a word in memory. It takes nothing from the system beforehand and no memory, so
/// locks and events are made of it. It leaves the thread's last error alone. A failure of the system ends the process
/// by abort().

/// Sleeps while these bits are `value`, until somebody wakes; may return without a cause. False once the time has
/// passed, which runs on the monotonic clock; infiniteWait of event.h is no limit. Where the system ends all other
/// threads before a library's static objects (Windows), a sleep without limit then ends the process at once, with
/// 0xC000004B.
bool sleepOnWord(const void* word, std::uint32_t value, unsigned long milliseconds) noexcept;

/// Wakes one who sleeps on the word, if somebody does. The word itself is not touched and may be gone.
void wakeOnWord(const void* word) noexcept;

/// Wakes all who sleep on the word, likewise.
void wakeAllOnWord(const void* word) noexcept;

/// Tells the calling thread from all others that run: not 0, below 2^48, and a multiple of 64.
[[nodiscard]] std::uint64_t threadMark() noexcept;

} // namespace Zentara::Utils::Platform
