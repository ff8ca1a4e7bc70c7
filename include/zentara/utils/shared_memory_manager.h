#pragma once

#include <zentara/export.h>
#include <zentara/utils/atomic_int.h>
#include <zentara/utils/mutex.h>

#include <cstdint>
#include <string>

namespace Zentara::Utils {

class SharedMemory;

/// Hands out shared memory under process-wide counting, and identifiers to name it by. Safe.
class ZENTARA_API SharedMemoryManager final {
public:
    SharedMemoryManager() = delete;

    /// Obtains the process's shared memory on first use; later calls keep what is there. The other operations
    /// call it by themselves. \param takeReference true to count the caller as incref() does.
    static void initialize(bool takeReference);

    /// An identifier that no other call, in this process or another, was given: the process identifier in the
    /// upper 32 bits and a number counted from 1 in the lower.
    [[nodiscard]] static std::uint64_t getUniqueID();

    /// The identifier in decimal.
    [[nodiscard]] static std::string getName(std::uint64_t id);

    /// Writable shared memory, see SharedMemory::getPtr().
    /// \throws std::bad_alloc on every failure.
    [[nodiscard]] static void* get(std::string name, unsigned int index, unsigned int size);

    /// Counts a user of the process's mappings; decref() takes him back.
    static void incref();

    /// Drops what incref() or initialize(true) took; at 0 all mappings of the process are released.
    static void decref();

    /// Releases all mappings of the process.
    static void release();

    /// Releases every index of one name.
    static void release(std::string name);

private:
    static void obtain() ZENTARA_REQUIRES(_lock);
    static void releaseMappings() ZENTARA_REQUIRES(_lock);

    static Threading::Mutex& _lock;                        ///< never destroyed
    static AtomicInt _refCount;                            ///< users; 0 releases the mappings
    static std::uint64_t _shmID ZENTARA_GUARDED_BY(_lock); ///< the next to give out; 0 before the first
    static SharedMemory* _sharedMemory ZENTARA_GUARDED_BY(_lock); ///< as it was last asked for
};

} // namespace Zentara::Utils
