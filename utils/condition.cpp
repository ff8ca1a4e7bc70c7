#include <zentara/utils/condition.h>

#include "utils/platform/event.h"

namespace Zentara::Utils::Threading {

struct Condition::Impl {
    Impl(Mutex* plain, RecursiveMutex* recursive) : mutex(plain), recursiveMutex(recursive) {}

    Mutex* const mutex;
    RecursiveMutex* const recursiveMutex;
    const Platform::Owned<Platform::EventPair> events{Platform::EventPair::create()};

    Mutex state;
    unsigned int waiters ZENTARA_GUARDED_BY(state) = 0;
    /// Notifications that no waiter has taken yet, at most one per waiter. The events alone could not tell: a
    /// second notify() may set the automatic event before the first waiter has consumed it.
    unsigned int pending ZENTARA_GUARDED_BY(state) = 0;
    bool broadcast ZENTARA_GUARDED_BY(state) = false;

    void enter() {
        AutoLock hold(state);
        ++waiters;
    }

    /// Ends one wait; true when a notification was there for it, be it at the last moment.
    bool leave(bool woken) {
        AutoLock hold(state);
        --waiters;
        const bool notified = broadcast || pending != 0;
        if (!broadcast && pending != 0)
            takePending(woken);
        if (waiters == 0)
            forgetAll();
        return notified;
    }

    void takePending(bool woken) ZENTARA_REQUIRES(state) {
        if (!woken)
            events->wait(0);
        if (--pending != 0)
            events->setOne();
    }

    void forgetAll() ZENTARA_REQUIRES(state) {
        broadcast = false;
        pending = 0;
        events->reset();
    }
};

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
    impl->enter();
    unlock();
    const bool woken = impl->events->wait(milliseconds);
    const bool notified = impl->leave(woken);
    lock();
    return notified || woken ? 0 : -1;
}

void Condition::notify(bool takeMutex) noexcept {
    if (takeMutex)
        lock();
    {
        AutoLock hold(impl->state);
        if (impl->pending < impl->waiters) {
            ++impl->pending;
            impl->events->setOne();
        }
    }
    if (takeMutex)
        unlock();
}

void Condition::notifyAll() noexcept {
    AutoLock hold(impl->state);
    if (impl->waiters != 0) {
        impl->broadcast = true;
        impl->events->setAll();
    }
}

} // namespace Zentara::Utils::Threading
