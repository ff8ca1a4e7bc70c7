#pragma once

#include <atomic>
#include <cstdint>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Bench {

/// What a thread can sleep on at least.
class BareFutex {
public:
    void set() {
        value.store(1, std::memory_order_release);
        syscall(SYS_futex, &value, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    }
    void wait() {
        while (value.exchange(0, std::memory_order_acquire) == 0)
            syscall(SYS_futex, &value, FUTEX_WAIT_PRIVATE, 0, nullptr, nullptr, 0);
    }

private:
    std::atomic<std::uint32_t> value{0};
};

} // namespace Bench
