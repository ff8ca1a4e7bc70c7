#include <zentara/utils/shared_memory_manager.h>

#include <zentara/utils/shared_memory.h>

#include "utils/immortal.h"
#include "utils/platform/thread.h"

namespace Zentara::Utils {

namespace {

constinit Immortal<Threading::Mutex> lockStorage;

} // namespace

Threading::Mutex& SharedMemoryManager::_lock = lockStorage.object;
constinit AtomicInt SharedMemoryManager::_refCount{0};
std::uint64_t SharedMemoryManager::_shmID = 0;
SharedMemory* SharedMemoryManager::_sharedMemory = nullptr;

void SharedMemoryManager::obtain() {
    // Asked for each time: SharedMemory::release() may have destroyed the last one.
    _sharedMemory = SharedMemory::getSharedMemory();
    if (_shmID == 0)
        _shmID = std::uint64_t{Platform::currentProcessId()} << 32 | 1;
}

void SharedMemoryManager::releaseMappings() {
    obtain();
    _sharedMemory->releaseAll(false);
}

void SharedMemoryManager::initialize(bool takeReference) {
    Threading::AutoLock hold(_lock);
    obtain();
    if (takeReference)
        _refCount.increment();
}

std::uint64_t SharedMemoryManager::getUniqueID() {
    Threading::AutoLock hold(_lock);
    obtain();
    return _shmID++;
}

std::string SharedMemoryManager::getName(std::uint64_t id) { return std::to_string(id); }

void* SharedMemoryManager::get(std::string name, unsigned int index, unsigned int size) {
    Threading::AutoLock hold(_lock);
    obtain();
    return _sharedMemory->getPtr(std::move(name), index, size, true);
}

void SharedMemoryManager::incref() { initialize(true); }

void SharedMemoryManager::decref() {
    Threading::AutoLock hold(_lock);
    if (_refCount.decrementAndTest())
        releaseMappings();
}

void SharedMemoryManager::release() {
    Threading::AutoLock hold(_lock);
    releaseMappings();
}

void SharedMemoryManager::release(std::string name) {
    Threading::AutoLock hold(_lock);
    obtain();
    _sharedMemory->releaseAll(std::move(name), false);
}

} // namespace Zentara::Utils
