#include <zentara/utils/mutex.h>
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

// Whether the other thread sleeps at that moment only the system knows, so it is tried until it did.
TEST(Signal, KeepsASetBesidesTheOneOfASleeper) {
    bool kept = false;
    for (int round = 0; round < 1000 && !kept; ++round) {
        Signal starts;
        Signal signal;
        std::thread sleeper([&] {
            starts.set();
            signal.wait();
        });
        starts.wait();
        ThreadBase::sleep(1);
        signal.set();
        signal.set();
        sleeper.join();
        kept = signal.isSet();
        EXPECT_FALSE(signal.isSet());
    }
    EXPECT_TRUE(kept);
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
    Mutex mutex;
    RecursiveMutex recursive;
    int count = 0;
    auto work = [&]() ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
        for (int i = 0; i < 5000; ++i) {
            AutoLock outer(mutex);
            AutoLock inner(mutex);
            RecursiveAutoLock third(recursive);
            RecursiveAutoLock fourth(recursive);
            ++count;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(work);
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(count, 4 * 5000);
}

} // namespace
} // namespace Zentara::Utils::Threading
