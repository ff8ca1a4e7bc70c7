#include "utils/platform/event.h"

#include "utils/platform/windows/system.h"

#include <cstdlib>
#include <new>

namespace Zentara::Utils::Platform {

namespace {

void require(bool succeeded) noexcept {
    if (!succeeded)
        std::abort();
}

struct WindowsEvent final : Event {
    explicit WindowsEvent(Reset kind) noexcept
        : handle(CreateEventW(nullptr, kind == Reset::manual, FALSE, nullptr)) {
        require(handle != nullptr);
    }
    ~WindowsEvent() { CloseHandle(handle); }

    const HANDLE handle;
};

HANDLE native(Event& event) { return static_cast<WindowsEvent&>(event).handle; }

} // namespace

Event* Event::create(Reset reset) noexcept {
    Event* const event = new (std::nothrow) WindowsEvent(reset);
    require(event != nullptr);
    return event;
}

void Event::destroy(Event* event) noexcept { delete static_cast<WindowsEvent*>(event); }

void Event::set() noexcept { require(SetEvent(native(*this))); }

void Event::reset() noexcept { require(ResetEvent(native(*this))); }

bool Event::wait(unsigned long milliseconds) noexcept {
    const DWORD result = WaitForSingleObject(native(*this), milliseconds);
    require(result != WAIT_FAILED);
    return result != WAIT_TIMEOUT;
}

} // namespace Zentara::Utils::Platform
