#include <zentara/utils/clock.h>
#include <zentara/utils/condition.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace Zentara::Utils::Threading {
namespace {

constexpr unsigned long generous = 30000;

// Who is owed a notification, and when, is tried by steps where it can be.
TEST(Condition, WakesTheThreadsThatWait) {
    for (const bool all : {false, true}) {
        Mutex mutex;
        Condition condition(&mutex);
        int entered = 0;
        std::atomic<int> woken{0};
        const auto waitOnce = [&] {
            condition.lock();
            ++entered;
            woken += condition.timedWait(generous) == 0;
            condition.unlock();
        };
        std::thread waiters[]{std::thread(waitOnce), std::thread(waitOnce), std::thread(waitOnce)};
        for (bool ready = false; !ready;) { // a waiter registers before it lets go of the mutex
            std::this_thread::yield();
            condition.lock();
            ready = entered == 3;
            condition.unlock();
        }
        const std::int64_t began = Clock::nowMicros();
        // At once, so that the system's event is set again before anybody could consume it.
        if (all)
            condition.notifyAll();
        for (int count = all ? 3 : 0; count < 3; ++count)
            condition.notify(count == 1);
        for (std::thread& waiter : waiters)
            waiter.join();
        EXPECT_EQ(woken, 3) << all;
        EXPECT_LT(Clock::nowMicros() - began, 10'000'000) << "woken, not timed out";
    }
}

TEST(Condition, ForgetsWhatNobodyWaitedFor) {
    Mutex plain;
    RecursiveMutex recursive;
    Condition overPlain(&plain);
    Condition overRecursive(&recursive);
    for (Condition* condition : {&overPlain, &overRecursive}) {
        condition->notify(false);
        condition->notifyAll();
        condition->lock();
        EXPECT_EQ(condition->timedWait(0), -1);
        condition->unlock();
    }
    RecursiveAutoLock free(recursive);
}

} // namespace
} // namespace Zentara::Utils::Threading
