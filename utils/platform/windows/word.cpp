#include "utils/platform/word.h"

#include "utils/platform/error_text.h"
#include "utils/platform/windows/system.h"

#include <cstdlib>

namespace Zentara::Utils::Platform {

bool sleepOnWord(const void* word, std::uint32_t value, unsigned long milliseconds) noexcept {
    const LastErrorKeeper keeper;
    const bool woken = WaitOnAddress(const_cast<void*>(word), &value, sizeof value, milliseconds) != 0;
    if (!woken && GetLastError() != ERROR_TIMEOUT)
        std::abort();
    return woken;
}

void wakeOnWord(const void* word) noexcept { WakeByAddressSingle(const_cast<void*>(word)); }

void wakeAllOnWord(const void* word) noexcept { WakeByAddressAll(const_cast<void*>(word)); }

std::uint64_t threadMark() noexcept { return std::uint64_t{GetCurrentThreadId()} << 8; }

} // namespace Zentara::Utils::Platform
