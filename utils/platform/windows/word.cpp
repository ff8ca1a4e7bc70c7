#include "utils/platform/word.h"

#include "utils/platform/error_text.h"
#include "utils/platform/windows/system.h"

#include <cstdlib>

namespace Zentara::Utils::Platform {

namespace {

/// True once the system has ended all other threads of the process, wherever they stood, and runs what the libraries do
/// at the end on this one.
bool processEnds() noexcept {
    using Question = BOOLEAN(WINAPI*)();
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    const FARPROC address = system ? GetProcAddress(system, "RtlDllShutdownInProgress") : nullptr;
    return address && reinterpret_cast<Question>(reinterpret_cast<void*>(address))();
}

/// What a process ends with when a critical section of the system meets the same.
constexpr UINT threadHasEnded = 0xC000004B;

} // namespace

bool sleepOnWord(const void* word, std::uint32_t value, unsigned long milliseconds) noexcept {
    const LastErrorKeeper keeper;
    // Nobody is left who could wake this thread, and what the holder of a lock was changing is half changed.
    if (milliseconds == INFINITE && processEnds())
        TerminateProcess(GetCurrentProcess(), threadHasEnded);
    const bool woken = WaitOnAddress(const_cast<void*>(word), &value, sizeof value, milliseconds) != 0;
    if (!woken && GetLastError() != ERROR_TIMEOUT)
        std::abort();
    return woken;
}

void wakeOnWord(const void* word) noexcept { WakeByAddressSingle(const_cast<void*>(word)); }

void wakeAllOnWord(const void* word) noexcept { WakeByAddressAll(const_cast<void*>(word)); }

std::uint64_t threadMark() noexcept { return std::uint64_t{GetCurrentThreadId()} << 8; }

} // namespace Zentara::Utils::Platform
