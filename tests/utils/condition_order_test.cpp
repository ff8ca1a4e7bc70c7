#include <zentara/utils/condition.h>
#include <zentara/utils/queue.h>

#include "utils/platform/event.h"
#include "utils/platform/word.h"

#include <gtest/gtest.h>

namespace Zentara::Utils::Threading {
namespace {

/// What happens at the moment when the mutex of the test, or any if none is watched, is given back.
std::function<void()> atRelease;
const Mutex* watched = nullptr;

/// What happens when a thread falls asleep; its time has passed then.
std::function<void()> atSleep;

TEST(ConditionOrder, AWaiterIsKnownBeforeItGivesItsMutexBack) {
    Mutex mutex;
    Condition condition(&mutex);
    watched = &mutex;
    for (const bool all : {false, true}) {
        atRelease = [&] {
            all ? condition.notifyAll() : condition.notify(false);
            EXPECT_EQ(condition.timedWait(0), -1) << "the notification is another's";
        };
        EXPECT_EQ(condition.timedWait(0), 0) << all;
    }
    EXPECT_EQ(condition.timedWait(0), -1) << "and the notification is used up";
}

TEST(ConditionOrder, ANotificationAtTheLastMomentCounts) {
    Mutex mutex;
    Condition condition(&mutex);
    atSleep = [&] { condition.notify(false); };
    EXPECT_EQ(condition.timedWait(1), 0);
    EXPECT_EQ(condition.timedWait(1), -1);
}

// Two pushes before either of two waiters sleeps are one signal.
TEST(QueueOrder, WhoTakesAnElementWakesTheNext) {
    Collection::Queue<int> queue;
    int first = 0;
    int second = 0;
    bool slept = false;
    watched = nullptr;
    atSleep = [&] { slept = true; };
    atRelease = [&] {     // the first waits
        atRelease = [&] { // so does the second
            queue.push(1);
            queue.push(2);
        };
        EXPECT_TRUE(queue.timedPop(second, 1000));
    };
    EXPECT_TRUE(queue.timedPop(first, 1000));
    EXPECT_EQ(first + second, 3);
    EXPECT_FALSE(slept);
    atSleep = nullptr;
}

TEST(EventOrder, ATokenAtTheLastMomentIsTakenAndTheWaiterGone) {
    using Platform::Event;
    for (const auto kind : {Event::Reset::automatic, Event::Reset::manual}) {
        const Platform::Owned<Event> event(Event::create(kind));
        atSleep = [&] { event->set(); };
        EXPECT_TRUE(event->wait(1));
        EXPECT_EQ(event->wait(1), kind == Event::Reset::manual) << "taken, or there for all";
        event->set();
        event->set();
        EXPECT_TRUE(event->wait(0));
        EXPECT_EQ(event->wait(0), kind == Event::Reset::manual) << "there is room for one more than waiters";
        event->reset();
        atSleep = [&] {
            event->set();
            event->set();
        };
        EXPECT_TRUE(event->wait(1) && event->wait(0)) << "one for the sleeper, and one that stays";
    }
}

} // namespace

// One thread alone runs here, with these in the place of the library's own.
Mutex::~Mutex() = default;
void Mutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {}
void Mutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    if (const auto happens = !watched || this == watched ? std::exchange(atRelease, nullptr) : nullptr)
        happens();
}
void RecursiveMutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.acquire(); }
void RecursiveMutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.release(); }

} // namespace Zentara::Utils::Threading

bool Zentara::Utils::Platform::sleepOnWord(const void*, std::uint32_t, unsigned long) noexcept {
    if (const auto happens = std::exchange(Threading::atSleep, nullptr))
        happens();
    return false;
}
void Zentara::Utils::Platform::wakeOnWord(const void*) noexcept {}
void Zentara::Utils::Platform::wakeAllOnWord(const void*) noexcept {}
