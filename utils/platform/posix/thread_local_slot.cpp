#include "utils/platform/thread_local_slot.h"

#include <cstdlib>

#include <pthread.h>

namespace Zentara::Utils::Platform {

namespace {

struct PosixSlot final : ThreadLocalSlot {
    PosixSlot() noexcept {
        if (pthread_key_create(&key, nullptr) != 0)
            std::abort();
    }
    ~PosixSlot() { pthread_key_delete(key); }

    pthread_key_t key{};
};

pthread_key_t key(const ThreadLocalSlot& slot) { return static_cast<const PosixSlot&>(slot).key; }

} // namespace

// NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): without memory the process ends
ThreadLocalSlot* ThreadLocalSlot::create() noexcept { return new PosixSlot(); }

void ThreadLocalSlot::destroy(ThreadLocalSlot* slot) noexcept { delete static_cast<PosixSlot*>(slot); }

void ThreadLocalSlot::set(void* value) noexcept {
    if (pthread_setspecific(key(*this), value) != 0)
        std::abort();
}

void* ThreadLocalSlot::get() const noexcept { return pthread_getspecific(key(*this)); }

} // namespace Zentara::Utils::Platform
