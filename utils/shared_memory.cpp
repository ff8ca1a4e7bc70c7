#include <zentara/utils/shared_memory.h>

#include <zentara/utils/mutex.h>

#include "utils/immortal.h"
#include "utils/platform/shared_memory.h"
#include "utils/platform/thread.h"

#include <atomic>
#include <map>
#include <new>
#include <vector>

namespace Zentara::Utils {

namespace {

constexpr unsigned int maximumIndex = 127;

// Order of locks: instanceLock, then a table's own.

using Slot = Platform::Owned<Platform::SharedMapping>;
using Slots = std::vector<Slot>;

constinit Immortal<Threading::Mutex> instanceLockStorage;
Threading::Mutex& instanceLock = instanceLockStorage.object;
/// Null until asked for, and once it was let go.
SharedMemory* instance ZENTARA_GUARDED_BY(instanceLock) = nullptr;

Slot map(const std::string& mappingName, unsigned int size, bool writable) {
    // A zero byte inside would silently cut the name short.
    if (mappingName.find('\0') != std::string::npos)
        throw std::bad_alloc();
    Slot mapping(Platform::SharedMapping::create(mappingName, size, writable));
    if (!mapping)
        throw std::bad_alloc();
    return mapping;
}

void drop(Slot& slot, bool unlink) {
    if (slot && unlink)
        slot->unlink();
    slot.reset();
}

void drop(Slots& slots, bool unlink) {
    for (Slot& slot : slots)
        drop(slot, unlink);
}

} // namespace

struct SharedMemory::Impl {
    Threading::RecursiveMutex lock; ///< guards the table and what the system is asked for on its behalf
    std::string baseName = "/ZentaraSDK_";
    std::map<std::string, Slots> names ZENTARA_GUARDED_BY(lock);
    std::string sweptName ZENTARA_GUARDED_BY(lock); ///< the base name whose left-over memory was removed

    /// Before the first mapping under a base name: what killed processes left behind goes, and what this one has will
    /// go when it ends.
    void prepare() ZENTARA_REQUIRES(lock) {
        static AtTheEnd atTheEnd;
        atTheEnd.process = Platform::currentProcessId();
        if (sweptName == baseName)
            return;
        Platform::SharedMapping::sweep(baseName);
        sweptName = baseName;
    }

    /// Of the process, or of the library in it.
    struct AtTheEnd {
        /// Takes no lock for nothing: a child of fork that has mapped nothing has the locks as they happened to be, and
        /// where names go by themselves the threads that held them may be gone.
        ~AtTheEnd() {
            if (!Platform::SharedMapping::namesRemain() || process != Platform::currentProcessId())
                return;
            const Threading::AutoLock hold(instanceLock);
            if (instance)
                instance->impl->leave();
        }

        std::atomic<unsigned long> process{0}; ///< the one that mapped last
    };

    void leave() noexcept {
        const Threading::RecursiveAutoLock hold(lock);
        for (auto& [name, slots] : names) {
            for (Slot& slot : slots) {
                if (slot)
                    slot->leave();
            }
        }
    }
};

SharedMemory::SharedMemory() : impl(std::make_unique<Impl>()) {}

SharedMemory::~SharedMemory() = default;

SharedMemory* SharedMemory::getSharedMemory() {
    Threading::AutoLock hold(instanceLock);
    if (!instance)
        instance = new SharedMemory();
    return instance;
}

void SharedMemory::release() {
    Threading::AutoLock hold(instanceLock);
    delete instance;
    instance = nullptr;
}

void* SharedMemory::getPtr(std::string name, unsigned int index, unsigned int size, bool writable) {
    Threading::RecursiveAutoLock hold(impl->lock);
    if (index > maximumIndex)
        throw std::bad_alloc();
    Slots& slots = impl->names[name];
    if (index >= slots.size())
        slots.resize(index + 1);
    // A filled slot is handed out as it is, whatever size and access are asked for now.
    if (!slots[index]) {
        impl->prepare();
        slots[index] = map(impl->baseName + name + "_" + std::to_string(index), size, writable);
    }
    return slots[index]->address();
}

void SharedMemory::releasePtr(std::string name, unsigned int index, bool unlink) {
    Threading::RecursiveAutoLock hold(impl->lock);
    const auto found = impl->names.find(name);
    if (found != impl->names.end() && index < found->second.size())
        drop(found->second[index], unlink);
}

void SharedMemory::releaseAll(std::string name, bool unlink) {
    Threading::RecursiveAutoLock hold(impl->lock);
    const auto found = impl->names.find(name);
    if (found == impl->names.end())
        return;
    drop(found->second, unlink);
    impl->names.erase(found);
}

void SharedMemory::releaseAll(bool unlink) {
    Threading::RecursiveAutoLock hold(impl->lock);
    for (auto& entry : impl->names)
        drop(entry.second, unlink);
    impl->names.clear();
}

std::string& SharedMemory::getBaseName() { return impl->baseName; }

void SharedMemory::setBaseName(std::string& baseName) {
    Threading::RecursiveAutoLock hold(impl->lock);
    impl->baseName = baseName;
}

} // namespace Zentara::Utils
