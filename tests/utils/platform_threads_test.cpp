#include "utils/platform/clock.h"
#include "utils/platform/event.h"
#include "utils/platform/thread.h"
#include "utils/platform/thread_local_slot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <vector>

namespace Zentara::Utils::Platform {
namespace {

constexpr unsigned long generous = 30000;
using Function = std::function<void()>;

Owned<Thread> start(Function& function) {
    return Owned<Thread>(
        Thread::create([](void* passed) { (*static_cast<Function*>(passed))(); }, &function));
}

void runTogether(int count, Function function) {
    std::vector<Owned<Thread>> threads;
    for (int i = 0; i < count; ++i)
        threads.push_back(start(function));
    for (auto& thread : threads)
        thread->join();
}

TEST(PlatformEvent, WaitsAsLongAsTold) {
    Owned<Event> event(Event::create(Event::Reset::automatic));
    const std::int64_t before = monotonicMicroseconds();
    EXPECT_FALSE(event->wait(20));
    EXPECT_GE(monotonicMicroseconds() - before, 15'000);
}

/// As many sets as waits: whether a set finds its waiter asleep, about to sleep or timing out, nothing is
/// lost.
TEST(PlatformEvent, NoSetIsLostBetweenTwoThreads) {
    constexpr int rounds = 20000;
    Owned<Event> ping(Event::create(Event::Reset::automatic));
    Owned<Event> pong(Event::create(Event::Reset::automatic));
    Function answers = [&] {
        for (int i = 0; i < rounds; ++i) {
            while (!ping->wait(1)) {
            }
            pong->set();
        }
    };
    auto other = start(answers);
    for (int i = 0; i < rounds; ++i) {
        ping->set();
        ASSERT_TRUE(pong->wait(generous));
    }
    other->join();
}

TEST(PlatformThread, SleepsOnTheMonotonicClock) {
    const std::int64_t before = monotonicMicroseconds();
    sleepMilliseconds(20);
    EXPECT_GE(monotonicMicroseconds() - before, 15'000);
}

TEST(PlatformThreadLocalSlot, EveryThreadHasItsOwn) {
    Owned<ThreadLocalSlot> slot(ThreadLocalSlot::create());
    int mine = 0;
    slot->set(&mine);
    runTogether(3, [&] {
        EXPECT_EQ(slot->get(), nullptr);
        int own = 0;
        slot->set(&own);
        EXPECT_EQ(slot->get(), &own);
    });
    EXPECT_EQ(slot->get(), &mine);
}

} // namespace
} // namespace Zentara::Utils::Platform
