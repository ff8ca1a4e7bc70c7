#include <zentara/utils/condition.h>

#include "utils/platform/event.h"
#include "utils/platform/time_left.h"
#include "utils/platform/word.h"

#include <atomic>
#include <cstdint>

namespace Zentara::Utils::Threading {

namespace {

/// One wait, on the waiting thread's stack. Each has a word of its own to sleep on, so that a notification reaches a
/// thread that was waiting then and not one that has come to wait since.
struct Waiter {
    std::atomic<std::uint32_t> notified{0};
    Waiter* previous = nullptr;
    Waiter* next = nullptr;
};

/// Who waits, in the order of arrival. Linked through the waiters themselves, for a wait must not fail for want
/// of memory.
class WaiterList {
public:
    [[nodiscard]] Waiter* first() const { return head; }

    void append(Waiter& waiter) {
        waiter.previous = tail;
        (tail ? tail->next : head) = &waiter;
        tail = &waiter;
    }

    void remove(Waiter& waiter) {
        (waiter.previous ? waiter.previous->next : head) = waiter.next;
        (waiter.next ? waiter.next->previous : tail) = waiter.previous;
    }

private:
    Waiter* head = nullptr;
    Waiter* tail = nullptr;
};

/// Returns when the waiter was notified or the time has passed.
void sleepUntilNotified(const Waiter& waiter, unsigned long milliseconds) noexcept {
    const Platform::TimeLeft left(milliseconds);
    unsigned long next = milliseconds;
    while (waiter.notified.load(std::memory_order_acquire) == 0 &&
           Platform::sleepOnWord(&waiter.notified, 0, next))
        next = left.milliseconds();
}

} // namespace

struct Condition::Impl {
    Impl(Mutex* plain, RecursiveMutex* recursive) : mutex(plain), recursiveMutex(recursive) {}

    Mutex* const mutex;
    RecursiveMutex* const recursiveMutex;

    Mutex state; ///< a leaf: nothing else is taken while it is held
    WaiterList waiting ZENTARA_GUARDED_BY(state);

    void enter(Waiter& waiter);
    bool leave(Waiter& waiter);
    const void* takeFirst() ZENTARA_REQUIRES(state);
};

void Condition::Impl::enter(Waiter& waiter) {
    AutoLock hold(state);
    waiting.append(waiter);
}

/// Ends one wait; true when it was notified, be it at the last moment.
bool Condition::Impl::leave(Waiter& waiter) {
    AutoLock hold(state);
    const bool notified = waiter.notified.load(std::memory_order_relaxed) != 0;
    if (!notified)
        waiting.remove(waiter);
    return notified;
}

/// Notifies the first one. \return what it sleeps on, for it to be woken; null when nobody waits
const void* Condition::Impl::takeFirst() {
    Waiter* const first = waiting.first();
    if (!first)
        return nullptr;
    waiting.remove(*first);
    // Under the lock that the waiter takes before it goes: its record is still there.
    first->notified.store(1, std::memory_order_release);
    return &first->notified;
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
    // In the list before the mutex goes: who changes the predicate and notifies, finds this waiter from then on.
    impl->enter(waiter);
    unlock();
    sleepUntilNotified(waiter, milliseconds);
    // The caller's mutex comes last: it is never asked for with `state` held.
    const bool notified = impl->leave(waiter);
    lock();
    return notified ? 0 : -1;
}

void Condition::notify(bool takeMutex) noexcept {
    if (takeMutex)
        lock();
    const void* sleeper = nullptr;
    {
        AutoLock hold(impl->state);
        sleeper = impl->takeFirst();
    }
    // Woken without the lock, which it takes next. Should its record have gone by now, nobody or another one wakes, who
    // looks and sleeps again.
    if (sleeper)
        Platform::wakeOnWord(sleeper);
    if (takeMutex)
        unlock();
}

void Condition::notifyAll() noexcept {
    const void* last = nullptr; // it is woken without the lock, as by notify()
    {
        AutoLock hold(impl->state);
        while (const void* const next = impl->takeFirst()) {
            if (last)
                Platform::wakeOnWord(last);
            last = next;
        }
    }
    if (last)
        Platform::wakeOnWord(last);
}

} // namespace Zentara::Utils::Threading
