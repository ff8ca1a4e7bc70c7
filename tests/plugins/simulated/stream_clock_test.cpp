#include "plugins/simulated/stream_clock.h"

#include <atomic>
#include <cstdint>
#include <thread>

#include <gtest/gtest.h>

#include <zentara/utils/clock.h>

namespace Zentara::Simulated {
namespace {

using Turn = StreamClock::Turn;

struct Unit {
    Turn turn = Turn::Late;
    std::uint64_t number = 0;
    std::int64_t due = 0;
};

Unit next(StreamClock& clock) {
    Unit unit;
    unit.turn = clock.waitForNext(unit.number, unit.due);
    return unit;
}

TEST(StreamClock, DropsWhatALateReaderMissed) {
    StreamClock clock(60, 4);
    clock.startAt(Utils::Clock::nowMicros() - 10'000'000); // the reader comes ten seconds late
    const Unit first = next(clock);
    ASSERT_EQ(first.turn, Turn::Due);
    EXPECT_GE(first.number, 597U);
    const Unit second = next(clock);
    EXPECT_GT(second.number, first.number);
    EXPECT_GE(second.due, first.due + 16'666);
    EXPECT_GE(Utils::Clock::nowMicros(), second.due) << "never early";
}

TEST(StreamClock, StopWakesEveryReaderAndCancelOne) {
    StreamClock clock(1, 1);
    clock.startAt(Utils::Clock::nowMicros() + 100'000'000);
    std::atomic<int> stopped{0};
    std::thread readers[3];
    for (std::thread& reader : readers)
        reader = std::thread([&] {
            while (next(clock).turn == Turn::Late) {
            }
            ++stopped;
        });
    while (!clock.cancel())
        std::this_thread::yield();
    EXPECT_TRUE(clock.running()) << "a wait was ended, not the stream";
    clock.stop();
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(stopped, 3);
    EXPECT_EQ(next(clock).turn, Turn::Stopped);
    EXPECT_FALSE(clock.running());
    EXPECT_FALSE(clock.cancel()) << "nobody waits";
}

TEST(StreamClock, PauseHoldsTheUnitsBackAndLosesNone) {
    StreamClock clock(1000, 100'000);
    clock.start();
    const Unit before = next(clock);
    clock.pause();
    while (next(clock).turn == Turn::Due) {
        // what fell due before the pause
    }
    clock.resume();
    const Unit after = next(clock);
    ASSERT_EQ(after.turn, Turn::Due);
    EXPECT_GT(after.number, before.number);
    EXPECT_LT(after.number, 100'000U);
}

} // namespace
} // namespace Zentara::Simulated
