#include "utils/platform/thread.h"

#include "utils/platform/posix/deadline.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

struct PosixThread final : Thread {
    pthread_t thread{};
    bool joined = false;
};

/// What the new thread is to do, which it takes over: whoever made it may return before it begins.
struct Entry {
    void (*function)(void*);
    void* argument;
};

/// The thread's number, 0 until it is asked for. Forked, a thread goes on under another one.
thread_local unsigned long knownThreadId = 0;
void forgetThreadId() noexcept { knownThreadId = 0; }
const bool childrenForget = pthread_atfork(nullptr, nullptr, &forgetThreadId) == 0;

void* enter(void* passed) {
    const Entry entry = *std::unique_ptr<Entry>(static_cast<Entry*>(passed));
    entry.function(entry.argument);
    return nullptr;
}

} // namespace

Thread* Thread::create(void (*function)(void*), void* argument) noexcept {
    std::unique_ptr<PosixThread> thread(new (std::nothrow) PosixThread);
    std::unique_ptr<Entry> entry(new (std::nothrow) Entry{function, argument});
    if (!thread || !entry || pthread_create(&thread->thread, nullptr, &enter, entry.get()) != 0)
        std::abort();
    static_cast<void>(entry.release());
    return thread.release();
}

void Thread::destroy(Thread* thread) noexcept {
    const std::unique_ptr<PosixThread> owned(static_cast<PosixThread*>(thread));
    if (owned && !owned->joined)
        pthread_detach(owned->thread);
}

void Thread::join() noexcept {
    auto& self = static_cast<PosixThread&>(*this);
    if (pthread_join(self.thread, nullptr) != 0)
        std::abort();
    self.joined = true;
}

bool Thread::isCurrent() const noexcept {
    return pthread_equal(static_cast<const PosixThread&>(*this).thread, pthread_self()) != 0;
}

unsigned long currentThreadId() noexcept {
    if (knownThreadId == 0 || !childrenForget)
        knownThreadId = static_cast<unsigned long>(syscall(SYS_gettid));
    return knownThreadId;
}

unsigned long currentProcessId() noexcept { return static_cast<unsigned long>(getpid()); }

void sleepMilliseconds(unsigned long milliseconds) noexcept {
    // Up to a moment, not for a while: what signals interrupt does not grow longer by it.
    const Deadline deadline(milliseconds);
    if (!deadline.get()) {
        for (;;)
            pause();
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, deadline.get(), nullptr) == EINTR) {
    }
}

void nameCurrentThread(const char* name) noexcept {
    // The kernel keeps the first 15 bytes.
    prctl(PR_SET_NAME, name, 0, 0, 0);
}

} // namespace Zentara::Utils::Platform
