#include "utils/platform/mutex.h"

#include <cstdlib>

#include <pthread.h>

namespace Zentara::Utils::Platform {

namespace {

void require(int result) noexcept {
    if (result != 0)
        std::abort();
}

struct PosixMutex final : Mutex {
    PosixMutex() noexcept {
        pthread_mutexattr_t attributes;
        require(pthread_mutexattr_init(&attributes));
        require(pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE));
        require(pthread_mutex_init(&mutex, &attributes));
        pthread_mutexattr_destroy(&attributes);
    }
    ~PosixMutex() { pthread_mutex_destroy(&mutex); }

    pthread_mutex_t mutex;
};

pthread_mutex_t* native(Mutex* mutex) { return &static_cast<PosixMutex*>(mutex)->mutex; }

} // namespace

// NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): without memory the process ends
Mutex* Mutex::create() noexcept { return new PosixMutex(); }

void Mutex::destroy(Mutex* mutex) noexcept { delete static_cast<PosixMutex*>(mutex); }

void Mutex::lock() noexcept { require(pthread_mutex_lock(native(this))); }

void Mutex::unlock() noexcept { require(pthread_mutex_unlock(native(this))); }

} // namespace Zentara::Utils::Platform
