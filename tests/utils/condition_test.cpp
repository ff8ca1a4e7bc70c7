#include <zentara/utils/condition.h>
#include <zentara/utils/signal.h>

#include <gtest/gtest.h>

#include <thread>

namespace Zentara::Utils::Threading {
namespace {

constexpr unsigned long generous = 30000;

/// Threads that wait once on a condition.
class ConditionTest : public testing::Test {
protected:
    ~ConditionTest() override {
        for (auto& thread : threads)
            thread.join();
    }

    /// Returns once `count` threads more are waiting: a waiter registers before it lets go of the mutex.
    void startWaiters(int count) {
        expected += count;
        for (int i = 0; i < count; ++i)
            threads.emplace_back([this] { waitOnce(); });
        for (bool all = false; !all;) {
            std::this_thread::yield();
            condition.lock();
            all = entered == expected;
            condition.unlock();
        }
    }

    void waitOnce() {
        condition.lock();
        ++entered;
        const int result = condition.timedWait(generous);
        woken += result == 0 ? 1 : 0;
        condition.unlock();
        returned.set();
    }

    int wokenAfter(int atLeast) {
        for (int seen = 0;;) {
            condition.lock();
            seen = woken;
            condition.unlock();
            if (seen >= atLeast || returned.timedWait(generous) != 0)
                return seen;
        }
    }

    Mutex mutex;
    Condition condition{&mutex};
    Signal returned;
    int entered = 0;
    int expected = 0;
    int woken = 0;
    std::vector<std::thread> threads;
};

TEST_F(ConditionTest, EveryNotificationReachesAWaiter) {
    startWaiters(4);
    // At once, so that the system's event is set again before anybody could consume it.
    for (int i = 0; i < 4; ++i)
        condition.notify(i % 2 == 0);
    EXPECT_EQ(wokenAfter(4), 4);
}

TEST_F(ConditionTest, NotifyAllWakesEverybodyAndIsForgotten) {
    startWaiters(3);
    condition.notifyAll();
    EXPECT_EQ(wokenAfter(3), 3);
    for (auto& thread : threads)
        thread.join();
    threads.clear();
    condition.lock();
    EXPECT_EQ(condition.timedWait(1), -1);
    condition.unlock();
    startWaiters(1);
    condition.notify(true);
    EXPECT_EQ(wokenAfter(4), 4);
}

TEST_F(ConditionTest, NotificationWithoutWaitersIsLost) {
    condition.notify(false);
    condition.notifyAll();
    RecursiveMutex other;
    Condition over(&other);
    for (Condition* either : {&condition, &over}) {
        either->lock();
        EXPECT_EQ(either->timedWait(0), -1);
        either->unlock();
    }
    RecursiveAutoLock free(other);
}

} // namespace
} // namespace Zentara::Utils::Threading
