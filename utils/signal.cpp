#include <zentara/utils/signal.h>

#include "utils/platform/event.h"

namespace Zentara::Utils::Threading {

Signal::Signal() : event(Platform::Event::create(Platform::Event::Reset::automatic)) {}

Signal::~Signal() { Platform::Event::destroy(event); }

void Signal::set() noexcept { event->set(); }

void Signal::wait() noexcept { event->wait(Platform::infiniteWait); }

int Signal::timedWait(unsigned long milliseconds) noexcept { return event->wait(milliseconds) ? 0 : -1; }

bool Signal::isSet() noexcept { return event->wait(0); }

} // namespace Zentara::Utils::Threading
