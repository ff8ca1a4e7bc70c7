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

TEST(PlatformEvent, AutomaticLetsOneWaitPass) {
    Owned<Event> event(Event::create(Event::Reset::automatic));
    EXPECT_FALSE(event->wait(0));
    event->set();
    event->set();
    EXPECT_TRUE(event->wait(infiniteWait));
    EXPECT_FALSE(event->wait(1));
    event->set();
    event->reset();
    EXPECT_FALSE(event->wait(0));
}

TEST(PlatformEvent, ManualLetsAllPassUntilReset) {
    Owned<Event> event(Event::create(Event::Reset::manual));
    Function waits = [&] { EXPECT_TRUE(event->wait(generous)); };
    auto first = start(waits);
    auto second = start(waits);
    event->set();
    first->join();
    second->join();
    EXPECT_TRUE(event->wait(0));
    event->reset();
    EXPECT_FALSE(event->wait(0));
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

TEST(PlatformThread, KnowsItself) {
    Owned<Event> told(Event::create(Event::Reset::automatic));
    Thread* self = nullptr;
    bool current = false;
    unsigned long identifier = 0;
    Function looks = [&] {
        told->wait(infiniteWait);
        current = self->isCurrent();
        identifier = currentThreadId();
        nameCurrentThread("a name far longer than fifteen bytes");
    };
    auto thread = start(looks);
    self = thread.get();
    EXPECT_FALSE(thread->isCurrent());
    told->set();
    thread->join();
    EXPECT_TRUE(current);
    EXPECT_NE(identifier, 0u);
    EXPECT_NE(identifier, currentThreadId());
    EXPECT_EQ(currentThreadId(), currentThreadId());
    EXPECT_NE(currentProcessId(), 0u);
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
