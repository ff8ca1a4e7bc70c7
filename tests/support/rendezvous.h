#pragma once

#include <condition_variable>
#include <mutex>

namespace Zentara::Testing {

/// Lets a fixed number of threads start each step together. The standard barrier loses wake-ups in the cross
/// compiler's runtime.
class Rendezvous final {
public:
    explicit Rendezvous(int threads) : expected(threads) {}

    void arriveAndWait() {
        std::unique_lock lock(mutex);
        const unsigned long step = steps;
        if (++arrived == expected) {
            arrived = 0;
            ++steps;
            everybody.notify_all();
        } else {
            everybody.wait(lock, [&] { return steps != step; });
        }
    }

private:
    const int expected;
    std::mutex mutex;
    std::condition_variable everybody;
    int arrived = 0;
    unsigned long steps = 0;
};

} // namespace Zentara::Testing
