#include "utils/platform/event.h"

#include "utils/platform/posix/event_cell.h"

#include <cstdlib>
#include <new>

namespace Zentara::Utils::Platform {

namespace {

struct PosixEvent final : Event {
    explicit PosixEvent(Reset kind) : manual(kind == Reset::manual) {}

    const bool manual;
    EventCell cell;
};

PosixEvent& native(Event& event) { return static_cast<PosixEvent&>(event); }

} // namespace

Event* Event::create(Reset reset) noexcept {
    Event* const event = new (std::nothrow) PosixEvent(reset);
    if (!event)
        std::abort();
    return event;
}

void Event::destroy(Event* event) noexcept { delete static_cast<PosixEvent*>(event); }

void Event::set() noexcept {
    PosixEvent& event = native(*this);
    if (event.manual)
        event.cell.raise();
    else
        event.cell.post();
}

void Event::reset() noexcept { native(*this).cell.clear(); }

bool Event::wait(unsigned long milliseconds) noexcept { return native(*this).cell.wait(milliseconds); }

} // namespace Zentara::Utils::Platform
