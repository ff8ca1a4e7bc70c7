#include "utils/platform/event.h"

#include "utils/platform/windows/system.h"

#include <cstdlib>

namespace Zentara::Utils::Platform {

namespace {

class EventHandle final {
public:
    explicit EventHandle(bool manual) noexcept : handle(CreateEventW(nullptr, manual, FALSE, nullptr)) {
        if (!handle)
            std::abort();
    }
    ~EventHandle() { CloseHandle(handle); }
    EventHandle(const EventHandle&) = delete;
    EventHandle& operator=(const EventHandle&) = delete;

    void set() const noexcept {
        if (!SetEvent(handle))
            std::abort();
    }
    void reset() const noexcept {
        if (!ResetEvent(handle))
            std::abort();
    }

    const HANDLE handle;
};

struct WindowsEvent final : Event {
    explicit WindowsEvent(Reset kind) noexcept : event(kind == Reset::manual) {}

    EventHandle event;
};

struct WindowsEventPair final : EventPair {
    EventHandle one{false};
    EventHandle all{true};
};

EventHandle& native(Event& event) { return static_cast<WindowsEvent&>(event).event; }
WindowsEventPair& native(EventPair& pair) { return static_cast<WindowsEventPair&>(pair); }

bool passed(DWORD result) {
    if (result == WAIT_FAILED)
        std::abort();
    return result != WAIT_TIMEOUT;
}

} // namespace

Event* Event::create(Reset reset) noexcept { return new WindowsEvent(reset); }

void Event::destroy(Event* event) noexcept { delete static_cast<WindowsEvent*>(event); }

void Event::set() noexcept { native(*this).set(); }

void Event::reset() noexcept { native(*this).reset(); }

bool Event::wait(unsigned long milliseconds) noexcept {
    return passed(WaitForSingleObject(native(*this).handle, milliseconds));
}

EventPair* EventPair::create() noexcept { return new WindowsEventPair(); }

void EventPair::destroy(EventPair* pair) noexcept { delete static_cast<WindowsEventPair*>(pair); }

void EventPair::setOne() noexcept { native(*this).one.set(); }

void EventPair::setAll() noexcept { native(*this).all.set(); }

void EventPair::reset() noexcept {
    native(*this).one.reset();
    native(*this).all.reset();
}

bool EventPair::wait(unsigned long milliseconds) noexcept {
    // The first of several set events is the one consumed.
    const HANDLE handles[] = {native(*this).all.handle, native(*this).one.handle};
    return passed(WaitForMultipleObjects(2, handles, FALSE, milliseconds));
}

} // namespace Zentara::Utils::Platform
