#pragma once

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZENTARA_TELLS_LOCKS
#include <sanitizer/tsan_interface.h>
#endif
#endif

/// Tells the thread sanitizer of locks that it cannot see, for they are mere words of memory: it then reports two that are
/// taken in both orders, before they ever lock each other out. In every other build nothing is left of this.
namespace Zentara::Utils::LockOrder {

#if defined(ZENTARA_TELLS_LOCKS)

/// Stands around what takes a lock.
class Taking final {
public:
    explicit Taking(void* word, bool isTried = false) noexcept
        : lock(word), flags(__tsan_mutex_write_reentrant | (isTried ? __tsan_mutex_try_lock : 0)) {
        __tsan_mutex_pre_lock(lock, flags);
    }
    ~Taking() { __tsan_mutex_post_lock(lock, flags, 1); }
    Taking(const Taking&) = delete;
    Taking& operator=(const Taking&) = delete;

    /// Hands on whether it was had.
    bool tell(bool isTaken) noexcept {
        flags |= isTaken ? 0 : __tsan_mutex_try_lock_failed;
        return isTaken;
    }

private:
    void* const lock;
    unsigned flags;
};

/// Stands around what gives a lock back.
class GivingBack final {
public:
    explicit GivingBack(void* word) noexcept : lock(word) { __tsan_mutex_pre_unlock(lock, 0); }
    ~GivingBack() { __tsan_mutex_post_unlock(lock, 0); }
    GivingBack(const GivingBack&) = delete;
    GivingBack& operator=(const GivingBack&) = delete;

private:
    void* const lock;
};

inline void forget(void* lock) noexcept { __tsan_mutex_destroy(lock, 0); }

#else

struct Taking final {
    explicit Taking(void*, bool = false) noexcept {}
    static bool tell(bool isTaken) noexcept { return isTaken; }
};
struct GivingBack final {
    explicit GivingBack(void*) noexcept {}
};
inline void forget(void*) noexcept {}

#endif

} // namespace Zentara::Utils::LockOrder
