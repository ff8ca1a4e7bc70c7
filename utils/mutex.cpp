#include <zentara/utils/mutex.h>

#include "utils/platform/mutex.h"

namespace Zentara::Utils::Threading {

namespace {

/// Several threads may come first at the same time: one cell wins, the others are given back.
Platform::Mutex& install(std::atomic<Platform::Mutex*>& cell) noexcept {
    Platform::Owned<Platform::Mutex> fresh(Platform::Mutex::create());
    Platform::Mutex* present = nullptr;
    if (cell.compare_exchange_strong(present, fresh.get(), std::memory_order_acq_rel))
        return *fresh.release();
    return *present;
}

} // namespace

Mutex::~Mutex() {
    if (Platform::Mutex* present = cell.load(std::memory_order_acquire))
        Platform::Mutex::destroy(present);
}

void Mutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    Platform::Mutex* present = cell.load(std::memory_order_acquire);
    (present ? *present : install(cell)).lock();
}

void Mutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    cell.load(std::memory_order_relaxed)->unlock();
}

void RecursiveMutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.acquire(); }

void RecursiveMutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.release(); }

} // namespace Zentara::Utils::Threading
