#include "utils/platform/word.h"

#include "utils/platform/error_text.h"
#include "utils/platform/posix/deadline.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

void wake(const void* word, int count) noexcept {
    const LastErrorKeeper keeper;
    // The kernel takes the address as a mere number: with the word gone it finds no sleeper, or wakes one that looks
    // and sleeps again.
    syscall(SYS_futex, word, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, count, nullptr, nullptr, 0);
}

} // namespace

bool sleepOnWord(const void* word, std::uint32_t value, unsigned long milliseconds) noexcept {
    const LastErrorKeeper keeper; // waiting for a lock is no call that its caller asked the system for
    const Deadline deadline(milliseconds);
    const long result = syscall(SYS_futex, word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, value,
                                deadline.get(), nullptr, FUTEX_BITSET_MATCH_ANY);
    // Woken, or the word was another already, or a signal came: in each case whoever waits looks again.
    if (result == 0 || errno == EAGAIN || errno == EINTR)
        return true;
    if (errno != ETIMEDOUT)
        std::abort();
    return false;
}

void wakeOnWord(const void* word) noexcept { wake(word, 1); }

void wakeAllOnWord(const void* word) noexcept { wake(word, INT_MAX); }

/// The address of the thread's own record in the C library, which is longer than 64 bytes: no two begin within the same
/// 64, be it aligned or not.
std::uint64_t threadMark() noexcept {
    return reinterpret_cast<std::uint64_t>(pthread_self()) & ~std::uint64_t{63};
}

} // namespace Zentara::Utils::Platform
