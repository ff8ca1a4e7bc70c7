#include "utils/platform/mutex.h"

#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

struct WindowsMutex final : Mutex {
    WindowsMutex() noexcept { InitializeCriticalSection(&section); }
    ~WindowsMutex() { DeleteCriticalSection(&section); }

    CRITICAL_SECTION section;
};

CRITICAL_SECTION* native(Mutex* mutex) { return &static_cast<WindowsMutex*>(mutex)->section; }

} // namespace

Mutex* Mutex::create() noexcept { return new WindowsMutex(); }

void Mutex::destroy(Mutex* mutex) noexcept { delete static_cast<WindowsMutex*>(mutex); }

void Mutex::lock() noexcept { EnterCriticalSection(native(this)); }

void Mutex::unlock() noexcept { LeaveCriticalSection(native(this)); }

} // namespace Zentara::Utils::Platform
