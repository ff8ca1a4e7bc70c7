#pragma once

#include <atomic>

#include <zentara/utils/mutex.h>

namespace Zentara::Host {

/// Does a thing at its first use, whoever comes first; the others wait for it. What it throws leaves it undone, and the
/// next one tries again, which the standard library's own hangs in on Windows. Safe.
class Once {
public:
    template<typename Work>
    void call(Work work) {
        if (done.load(std::memory_order_acquire))
            return;
        Utils::Threading::AutoLock hold(lock);
        if (done.load(std::memory_order_relaxed))
            return;
        work();
        done.store(true, std::memory_order_release);
    }

private:
    Utils::Threading::Mutex lock; ///< held while the work is done
    std::atomic<bool> done{false};
};

} // namespace Zentara::Host
