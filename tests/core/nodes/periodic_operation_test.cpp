#include <zentara/core/periodic_operation.h>

#include <gtest/gtest.h>

#include <zentara/utils/clock.h>
#include <zentara/utils/smart_ptr.h>

namespace Testing {
namespace {

using namespace Zentara::Core;
using Zentara::Utils::makeRefcounted;

TEST(PeriodicOperation, SkipsIntervalsWhileAPollIsPending) {
    const auto operation = makeRefcounted<TemperaturePeriodicOperation>(0U, 100, false);
    EXPECT_FALSE(operation->timeToPoll(1'000'000)) << "it is off, and the refused poll does not count";
    operation->enable(true);
    const std::tuple<std::int64_t, bool, const char*> polls[]{
        {50, false, "the interval has not passed since 0"},
        {100, false, "not more than the interval"},
        {150, true, "more than the interval"},
        {250, false, "not more than the interval since 150"},
        {260, false, "still pending"},
    };
    for (const auto& [time, due, why] : polls)
        EXPECT_EQ(operation->timeToPoll(time), due) << time << ": " << why;
    operation->setDone();
    EXPECT_FALSE(operation->timeToPoll(355)) << "the pending poll at 260 moved the time on";
    EXPECT_TRUE(operation->timeToPoll(370));
}

TEST(PeriodicOperation, ReadsTheClockInMicroseconds) {
    const std::int64_t now = Zentara::Utils::Clock::nowMicros();
    const auto due = makeRefcounted<TemperaturePeriodicOperation>(0U, now - 1, true);
    EXPECT_TRUE(due->timeToPoll());
    const auto hourAhead = makeRefcounted<TemperaturePeriodicOperation>(0U, now + 3'600'000'000, true);
    EXPECT_FALSE(hourAhead->timeToPoll());
}

TEST(PeriodicOperation, SurvivesTimesAtTheEndsOfTheScale) {
    constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t earliest = std::numeric_limits<std::int64_t>::min();
    const auto always = makeRefcounted<TemperaturePeriodicOperation>(0U, earliest, true);
    EXPECT_TRUE(always->timeToPoll(-1));
    EXPECT_FALSE(always->timeToPoll(latest)) << "the reading is pending";
    const auto never = makeRefcounted<TemperaturePeriodicOperation>(0U, latest, true);
    EXPECT_FALSE(never->timeToPoll(latest));
    EXPECT_FALSE(never->timeToPoll(earliest));
}

class PlainOperation final : public PeriodicOperation {
public:
    explicit PlainOperation(std::uint32_t sync)
        : PeriodicOperation(PeriodicOperationType_ACCELEROMETER, 1, true, sync) {}
};

TEST(PeriodicOperation, OnlyBitZeroOfTheSynchronisationCounts) {
    EXPECT_FALSE(makeRefcounted<PlainOperation>(0xFFFFFFFEU)->syncToFrame());
    EXPECT_TRUE(makeRefcounted<PlainOperation>(3U)->syncToFrame());
}

} // namespace
} // namespace Testing
