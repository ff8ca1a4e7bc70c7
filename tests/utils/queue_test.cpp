#include <zentara/utils/clock.h>
#include <zentara/utils/queue.h>

#include <gtest/gtest.h>

#include <thread>

namespace Zentara::Utils::Collection {
namespace {

constexpr unsigned long generous = 30000;

TEST(Queue, KeepsTheOrder) {
    Queue<std::unique_ptr<int>> queue;
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
    Queue<int> queue;
    int value = 7;
    EXPECT_FALSE(queue.timedPop(value, 0));
    EXPECT_FALSE(queue.timedPop(value, 2));
    EXPECT_EQ(value, 7);
}

/// Consumers of both kinds against producers: each value arrives once, and those of one producer in order as
/// far as one consumer sees them.
TEST(Queue, EveryValueArrivesOnce) {
    constexpr int producers = 3;
    constexpr int consumers = 3;
    constexpr int each = 4000;
    Queue<std::pair<int, int>> queue;
    std::vector<std::vector<std::pair<int, int>>> taken(consumers);
    std::vector<std::thread> threads;
    for (int c = 0; c < consumers; ++c) {
        threads.emplace_back([&, c] {
            for (int i = 0; i < producers * each / consumers; ++i) {
                std::pair<int, int> value;
                if (c != 0)
                    value = queue.pop();
                else if (!queue.timedPop(value, generous))
                    return;
                taken[static_cast<std::size_t>(c)].push_back(value);
            }
        });
    }
    for (int p = 0; p < producers; ++p) {
        threads.emplace_back([&, p] {
            for (int i = 0; i < each; ++i)
                queue.push({p, i});
        });
    }
    for (auto& thread : threads)
        thread.join();
    std::map<std::pair<int, int>, int> seen;
    for (const auto& list : taken) {
        std::vector<int> last(producers, -1);
        for (const auto& value : list) {
            EXPECT_LT(last[static_cast<std::size_t>(value.first)], value.second);
            last[static_cast<std::size_t>(value.first)] = value.second;
            ++seen[value];
        }
    }
    EXPECT_EQ(seen.size(), std::size_t{producers} * each);
    EXPECT_TRUE(queue.empty());
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
} // namespace Zentara::Utils::Collection
