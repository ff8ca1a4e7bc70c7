#include <atomic>

#include <gmock/gmock.h>

#include <zentara/utils/clock.h>
#include <zentara/utils/signal.h>

#include "plugins/linux/call_thread.h"
#include "support/failure.h"

namespace Zentara::Linux {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using TestSupport::failure;
using Utils::Threading::Signal;

/// What lives as long as a result, and tells where it died.
struct Marked {
    explicit Marked(std::atomic<int>& count) : died(count) {}
    ~Marked() { ++died; }
    Marked(const Marked&) = delete;
    Marked& operator=(const Marked&) = delete;
    std::atomic<int>& died;
};

TEST(CallThread, IsFreeWhileACameraOwesAnAnswer) {
    auto answer = std::make_shared<Signal>();
    auto died = std::make_shared<std::atomic<int>>(0);
    CallThread depth("left", "/dev/video0");
    CallThread color("left", "/dev/video2");
    CallThread other("right", "/dev/video4");
    const std::int64_t began = Utils::Clock::nowMicros();
    EXPECT_THAT(failure([&] {
                    depth.call("get control 1", [answer, died] {
                        answer->wait();
                        return std::make_shared<Marked>(*died);
                    });
                }),
                StartsWith("2: /dev/video0: cannot get control 1: the camera has not answered for 1.8 s"));
    const std::int64_t gaveUp = Utils::Clock::nowMicros();
    EXPECT_LT(gaveUp - began, 2'000'000);
    for (CallThread* later : {&depth, &color}) {
        EXPECT_THAT(failure([&] { later->call("start", [kept = std::make_shared<Marked>(*died)] {}); }),
                    testing::AllOf(StartsWith("4: "), HasSubstr("the camera isn't answering"),
                                   HasSubstr("/dev/video0: get control 1")));
    }
    EXPECT_LT(Utils::Clock::nowMicros() - gaveUp, 500'000);
    EXPECT_EQ(other.call("ask", [] { return 5; }), 5);
    answer->set();
    while (failure([&] { color.call("start", [] {}); }) != "nothing was thrown") {
    }
    EXPECT_EQ(depth.call("ask", [] { return 7; }), 7);
    EXPECT_EQ(*died, 3) << "the late answer went with its call, and what was refused went on its thread";
}

TEST(CallThread, HandsItselfOverAndKeepsWhatIsStillInUse) {
    auto answer = std::make_shared<Signal>();
    auto gone = std::make_shared<Signal>();
    auto begun = std::make_shared<Signal>();
    auto made = std::make_unique<CallThread>("silent", "/dev/video0");
    std::thread cancelling([&] {
        begun->wait();
        EXPECT_TRUE(made->cancel());
    });
    EXPECT_THAT(failure([&] {
                    made->call("stop", [answer, begun] {
                        begun->set();
                        answer->wait();
                    });
                }),
                StartsWith("2: "));
    cancelling.join();
    made->leave("close", [gone] { gone->set(); });
    const std::int64_t began = Utils::Clock::nowMicros();
    made.reset();
    EXPECT_LT(Utils::Clock::nowMicros() - began, 1'000'000);
    EXPECT_FALSE(gone->isSet());
    answer->set();
    EXPECT_EQ(gone->timedWait(10'000), 0) << "what was left is done when the camera answers";
}

} // namespace
} // namespace Zentara::Linux
