#include "utils/platform/word.h"

#include "utils/platform/error_text.h"
#include "utils/platform/posix/futex.h"

#include <cerrno>
#include <cstdlib>

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

bool futexWait(const void* word, std::uint32_t value, const Deadline& deadline) noexcept {
    const LastErrorKeeper keeper;
    const long result = syscall(SYS_futex, word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, value,
                                deadline.get(), nullptr, FUTEX_BITSET_MATCH_ANY);
    if (result == 0 || errno == EAGAIN || errno == EINTR)
        return true;
    if (errno != ETIMEDOUT)
        std::abort();
    return false;
}

void futexWake(const void* word, int count) noexcept {
    const LastErrorKeeper keeper;
    syscall(SYS_futex, word, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, count, nullptr, nullptr, 0);
}

bool sleepOnWord(const void* word, std::uint32_t value, unsigned long milliseconds) noexcept {
    return futexWait(word, value, Deadline(milliseconds));
}

void wakeOnWord(const void* word) noexcept { futexWake(word, 1); }

/// The address of the thread's own record in the C library.
std::uint64_t threadMark() noexcept { return reinterpret_cast<std::uint64_t>(pthread_self()); }

} // namespace Zentara::Utils::Platform
