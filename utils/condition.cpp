#include <zentara/utils/condition.h>

#include "utils/platform/event.h"

#include <algorithm>
#include <deque>

namespace Zentara::Utils::Threading {

namespace {

using Platform::Event;

/// One wait, on the waiting thread's stack. Each has an event of its own, so that a notification reaches a
/// thread that was waiting then and not one that has come to wait since.
struct Waiter {
    const Platform::Owned<Event> event{Event::create(Event::Reset::automatic)};
    bool notified = false;
};

} // namespace

struct Condition::Impl {
    Impl(Mutex* plain, RecursiveMutex* recursive) : mutex(plain), recursiveMutex(recursive) {}

    Mutex* const mutex;
    RecursiveMutex* const recursiveMutex;

    Mutex state;
    std::deque<Waiter*> waiting ZENTARA_GUARDED_BY(state);

    void enter(Waiter& waiter);
    bool leave(Waiter& waiter);
    void notifyFirst() ZENTARA_REQUIRES(state);
};

void Condition::Impl::enter(Waiter& waiter) {
    AutoLock hold(state);
    waiting.push_back(&waiter);
}

/// Ends one wait; true when it was notified, be it at the last moment.
bool Condition::Impl::leave(Waiter& waiter) {
    AutoLock hold(state);
    if (!waiter.notified)
        waiting.erase(std::find(waiting.begin(), waiting.end(), &waiter));
    return waiter.notified;
}

void Condition::Impl::notifyFirst() {
    Waiter& first = *waiting.front();
    waiting.pop_front();
    first.notified = true;
    // Under the lock that the waiter takes before it goes: its record is still there.
    first.event->set();
}

Condition::Condition(Mutex* mutex) : impl(std::make_unique<Impl>(mutex, nullptr)) {}

Condition::Condition(RecursiveMutex* mutex) : impl(std::make_unique<Impl>(nullptr, mutex)) {}

Condition::~Condition() = default;

void Condition::lock() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    if (impl->mutex)
        impl->mutex->acquire();
    else
        impl->recursiveMutex->acquire();
}

void Condition::unlock() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    if (impl->mutex)
        impl->mutex->release();
    else
        impl->recursiveMutex->release();
}

void Condition::wait() noexcept { timedWait(Platform::infiniteWait); }

int Condition::timedWait(unsigned long milliseconds) noexcept {
    Waiter waiter;
    impl->enter(waiter);
    unlock();
    waiter.event->wait(milliseconds);
    const bool notified = impl->leave(waiter);
    lock();
    return notified ? 0 : -1;
}

void Condition::notify(bool takeMutex) noexcept {
    if (takeMutex)
        lock();
    {
        AutoLock hold(impl->state);
        if (!impl->waiting.empty())
            impl->notifyFirst();
    }
    if (takeMutex)
        unlock();
}

void Condition::notifyAll() noexcept {
    AutoLock hold(impl->state);
    while (!impl->waiting.empty())
        impl->notifyFirst();
}

} // namespace Zentara::Utils::Threading
