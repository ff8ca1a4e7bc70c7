#include <zentara/utils/thread_base.h>

#include <zentara/utils/mutex.h>

#include "utils/platform/event.h"
#include "utils/platform/thread.h"
#include "utils/platform/thread_local_slot.h"

#include <utility>

namespace Zentara::Utils::Threading {

namespace {

/// One slot for all threads, through which suspend() finds the record of the calling one. Never freed:
/// threads may run to the end of the process.
Platform::ThreadLocalSlot& currentThread() {
    static Platform::ThreadLocalSlot* const slot = Platform::ThreadLocalSlot::create();
    return *slot;
}

} // namespace

struct ThreadBase::Impl {
    using Event = Platform::Event;

    Impl(void (*entry)(void*), void* entryArgument, bool startSuspended)
        : function(entry), argument(entryArgument), started(!startSuspended),
          state(startSuspended ? ThreadState_SUSPENDED : ThreadState_RUNNING) {}

    void (*const function)(void*); ///< lets no exception out
    void* const argument;          ///< the caller's
    const Platform::Owned<Event> resumed{Event::create(Event::Reset::automatic)};
    const Platform::Owned<Event> joined{Event::create(Event::Reset::manual)};
    /// Set before the first caller can see this record; the new thread itself leaves it alone.
    Platform::Owned<Platform::Thread> thread;

    mutable Mutex lock;
    bool started ZENTARA_GUARDED_BY(lock);           ///< false: held back, and may yet end without running
    bool abandoned ZENTARA_GUARDED_BY(lock) = false; ///< nobody can resume the thread any more
    bool joining ZENTARA_GUARDED_BY(lock) = false;   ///< somebody has asked the system to wait for the thread
    ThreadState state ZENTARA_GUARDED_BY(lock);

    static void enter(void* holder);
    bool awaitStart();
    void awaitResume();
    void park();
    void release(bool start);
    void abandon();
    void finish();
    bool claimJoin();
    bool isSuspended() const;
};

/// Runs on the new thread and keeps the record alive there.
void ThreadBase::Impl::enter(void* holder) {
    const std::unique_ptr<std::shared_ptr<Impl>> self(static_cast<std::shared_ptr<Impl>*>(holder));
    Impl& thread = **self;
    currentThread().set(&thread);
    if (thread.awaitStart())
        thread.function(thread.argument);
    currentThread().set(nullptr);
    thread.finish();
}

bool ThreadBase::Impl::awaitStart() {
    awaitResume();
    AutoLock hold(lock);
    return started;
}

/// The event only wakes; the state decides, so a wake-up left over from an earlier round does no harm.
void ThreadBase::Impl::awaitResume() {
    while (isSuspended())
        resumed->wait(Platform::infiniteWait);
}

void ThreadBase::Impl::park() {
    {
        AutoLock hold(lock);
        if (abandoned)
            return;
        state = ThreadState_SUSPENDED;
    }
    awaitResume();
}

void ThreadBase::Impl::release(bool start) {
    AutoLock hold(lock);
    if (state != ThreadState_SUSPENDED)
        return;
    started = started || start;
    state = ThreadState_RUNNING;
    resumed->set();
}

void ThreadBase::Impl::abandon() {
    {
        AutoLock hold(lock);
        abandoned = true;
    }
    release(false);
}

void ThreadBase::Impl::finish() {
    AutoLock hold(lock);
    state = ThreadState_FINISHED;
}

/// The system lets a thread be joined once: true for the first caller, who does it.
bool ThreadBase::Impl::claimJoin() {
    AutoLock hold(lock);
    return !std::exchange(joining, true);
}

bool ThreadBase::Impl::isSuspended() const {
    AutoLock hold(lock);
    return state == ThreadState_SUSPENDED;
}

ThreadBase::ThreadBase(void (*function)(void*), void* argument, bool startSuspended)
    : impl(std::make_shared<Impl>(function, argument, startSuspended)) {
    auto holder = std::make_unique<std::shared_ptr<Impl>>(impl);
    impl->thread.reset(Platform::Thread::create(&Impl::enter, holder.release()));
}

ThreadBase::~ThreadBase() { impl->abandon(); }

void ThreadBase::join() {
    const std::shared_ptr<Impl> self = impl;
    if (self->thread->isCurrent())
        return;
    if (self->claimJoin()) {
        self->thread->join();
        self->joined->set();
    } else {
        self->joined->wait(Platform::infiniteWait);
    }
}

void ThreadBase::resume() { impl->release(true); }

void ThreadBase::suspend() {
    if (auto* self = static_cast<Impl*>(currentThread().get()))
        self->park();
}

ThreadState ThreadBase::getState() const {
    AutoLock hold(impl->lock);
    return impl->state;
}

void ThreadBase::sleep(unsigned long milliseconds) { Platform::sleepMilliseconds(milliseconds); }

unsigned long ThreadBase::getCurrentThreadId() noexcept { return Platform::currentThreadId(); }

void ThreadBase::setDebuggerThreadName(const char* name) noexcept {
    if (name)
        Platform::nameCurrentThread(name);
}

} // namespace Zentara::Utils::Threading
