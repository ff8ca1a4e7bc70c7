#include "utils/platform/thread_local_slot.h"

#include "utils/platform/windows/system.h"

#include <cstdlib>

namespace Zentara::Utils::Platform {

namespace {

struct WindowsSlot final : ThreadLocalSlot {
    WindowsSlot() noexcept : index(TlsAlloc()) {
        if (index == TLS_OUT_OF_INDEXES)
            std::abort();
    }
    ~WindowsSlot() { TlsFree(index); }

    const DWORD index;
};

DWORD index(const ThreadLocalSlot& slot) { return static_cast<const WindowsSlot&>(slot).index; }

} // namespace

ThreadLocalSlot* ThreadLocalSlot::create() noexcept { return new WindowsSlot(); }

void ThreadLocalSlot::destroy(ThreadLocalSlot* slot) noexcept { delete static_cast<WindowsSlot*>(slot); }

void ThreadLocalSlot::set(void* value) noexcept {
    if (!TlsSetValue(index(*this), value))
        std::abort();
}

void* ThreadLocalSlot::get() const noexcept {
    // Reading a slot clears the thread's last error, which a caller may still want to report.
    const DWORD error = GetLastError();
    void* const value = TlsGetValue(index(*this));
    SetLastError(error);
    return value;
}

} // namespace Zentara::Utils::Platform
