#pragma once

#include <zentara/export.h>
#include <zentara/utils/thread_annotations.h>

#include <atomic>
#include <cstdint>

namespace Zentara::Utils::Threading {

/// A lock. Re-entrant on every system: a thread may acquire it again and must release it as often.
/// Must outlive every thread that uses it. Safe.
///
/// It is one word of memory: construction is constant-initialised, so a static mutex can be used by any initialiser,
/// and nothing is taken from the system, so no use of it can fail for lack of memory. A release() by a thread that does
/// not hold it, and more than 65,536 acquisitions at a time, end the process by abort(). One that threads may still use
/// while the process ends must not be destroyed: the library's own class-wide mutexes are references to storage that
/// never is. On Windows the system ends all other threads before the static objects of libraries go: one that then has
/// to wait for a lock of such a thread ends the process at once, with 0xC000004B, as a critical section does.
class ZENTARA_API ZENTARA_CAPABILITY("mutex") Mutex final {
public:
    constexpr Mutex() noexcept = default;
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /// Waits until no other thread holds the lock, without limit, and takes it.
    void acquire() noexcept ZENTARA_ACQUIRE();

    /// Gives back one acquire() of the calling thread.
    void release() noexcept ZENTARA_RELEASE();

private:
    std::atomic<std::uint64_t> word{0}; ///< who holds it, how often, and whether somebody waits; 0: free
};

/// The same lock under its own name, for places where re-entry is intended. Safe.
class ZENTARA_API ZENTARA_CAPABILITY("mutex") RecursiveMutex final {
public:
    constexpr RecursiveMutex() noexcept = default;
    RecursiveMutex(const RecursiveMutex&) = delete;
    RecursiveMutex& operator=(const RecursiveMutex&) = delete;

    /// Waits until no other thread holds the lock, without limit, and takes it.
    void acquire() noexcept ZENTARA_ACQUIRE();

    /// Gives back one acquire() of the calling thread.
    void release() noexcept ZENTARA_RELEASE();

private:
    Mutex mutex;
};

/// Holds a Mutex from its construction to its destruction.
class ZENTARA_API ZENTARA_SCOPED_CAPABILITY AutoLock final {
public:
    explicit AutoLock(Mutex& lock) noexcept ZENTARA_ACQUIRE(lock) : mutex(lock) { mutex.acquire(); }
    ~AutoLock() ZENTARA_RELEASE() { mutex.release(); }
    AutoLock(const AutoLock&) = delete;
    AutoLock& operator=(const AutoLock&) = delete;

private:
    Mutex& mutex;
};

/// Holds a RecursiveMutex from its construction to its destruction.
class ZENTARA_API ZENTARA_SCOPED_CAPABILITY RecursiveAutoLock final {
public:
    explicit RecursiveAutoLock(RecursiveMutex& lock) noexcept ZENTARA_ACQUIRE(lock) : mutex(lock) {
        mutex.acquire();
    }
    ~RecursiveAutoLock() ZENTARA_RELEASE() { mutex.release(); }
    RecursiveAutoLock(const RecursiveAutoLock&) = delete;
    RecursiveAutoLock& operator=(const RecursiveAutoLock&) = delete;

private:
    RecursiveMutex& mutex;
};

} // namespace Zentara::Utils::Threading
