#include <zentara/utils/clock.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/queue.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread_base.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace Zentara::Utils::Threading {
namespace {

constexpr unsigned long generous = 30000;

TEST(Signal, OneWaitConsumesIt) {
    Signal signal;
    EXPECT_EQ(signal.timedWait(0), -1);
    EXPECT_EQ(signal.timedWait(1), -1);
    signal.set();
    signal.set();
    EXPECT_TRUE(signal.isSet());
    EXPECT_FALSE(signal.isSet()) << "sets before a wait do not add up";
    signal.set();
    EXPECT_EQ(signal.timedWait(0xFFFFFFFF), 0);
    signal.set();
    signal.wait();
    EXPECT_FALSE(signal.isSet());
}

TEST(Signal, WaiterMayDestroyItAtOnce) {
    constexpr int rounds = 1000;
    std::atomic<Signal*> passed{nullptr};
    std::thread setter([&] {
        for (int i = 0; i < rounds; ++i) {
            Signal* signal = nullptr;
            while (!(signal = passed.exchange(nullptr)))
                std::this_thread::yield();
            signal->set();
        }
    });
    for (int i = 0; i < rounds; ++i) {
        auto signal = std::make_unique<Signal>();
        passed = signal.get();
        ASSERT_EQ(signal->timedWait(generous), 0);
    }
    setter.join();
}

TEST(Mutex, IsReentrantAndExclusive) ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    RecursiveMutex mutex; // which is one around the other
    int count = 0;
    auto work = [&]() ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
        for (int i = 0; i < 5000; ++i) {
            RecursiveAutoLock outer(mutex);
            RecursiveAutoLock inner(mutex);
            ++count;
        }
    };
    std::thread threads[]{std::thread(work), std::thread(work), std::thread(work)};
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(count, 3 * 5000);
}

TEST(Queue, KeepsTheOrder) {
    Collection::Queue<std::unique_ptr<int>> queue;
    for (int i = 0; i < 3; ++i)
        queue.push(std::make_unique<int>(i));
    EXPECT_EQ(queue.size(), 3u);
    EXPECT_EQ(*queue.pop(), 0);
    std::unique_ptr<int> value;
    EXPECT_TRUE(queue.timedPop(value, 0));
    EXPECT_EQ(*value, 1);
    EXPECT_EQ(*queue.pop(), 2);
    EXPECT_TRUE(queue.empty());
}

TEST(Queue, TimedPopGivesUp) {
    Collection::Queue<int> queue;
    int value = 7;
    EXPECT_FALSE(queue.timedPop(value, 0));
    EXPECT_FALSE(queue.timedPop(value, 2));
    EXPECT_EQ(value, 7);
}

TEST(Clock, SplitsAndRuns) {
    EXPECT_EQ(Clock::toTime(1'500'000), (Clock::Time{1, 500'000}));
    EXPECT_EQ(Clock::toTime(999'999), (Clock::Time{0, 999'999}));
    std::int64_t before = 0;
    Clock::Time split;
    EXPECT_EQ(Clock::getTime(before) + Clock::getTime(split), 0);
    const std::int64_t between = split.seconds * 1'000'000 + split.microseconds;
    EXPECT_TRUE(before <= between && between <= Clock::nowMicros());
}

} // namespace
} // namespace Zentara::Utils::Threading
