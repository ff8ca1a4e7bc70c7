#include <future>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/plugin/plugin_exceptions.h>

#include "host/cameras/hand.h"
#include "support/failure.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::MatchesRegex;
using TestSupport::failureOf;

constexpr auto longEnough = 10s; ///< for what is to come back

/// A work that hangs until it is let go, and whose result tells on which thread it ends.
struct Gate {
    struct Result {
        explicit Result(std::promise<std::thread::id>& told) : ended(told) {}
        ~Result() { ended.set_value(std::this_thread::get_id()); }
        std::promise<std::thread::id>& ended;
    };

    auto work() {
        return [this] {
            auto result = std::make_unique<Result>(ended);
            begun.set_value();
            opened.wait();
            return result;
        };
    }

    std::promise<void> begun;
    std::promise<void> open;
    std::promise<std::thread::id> ended;
    std::shared_future<void> opened{open.get_future()};
};

TEST(Hand, PassesOnWhatWorkThrows) {
    const Hand hand("LEFT", {});
    const Failure lost(Failure::NoDevice, "cannot see LEFT", "it went", "plug it in", {"port 3"});
    const Failure told = failureOf([&] { hand.call(longEnough, "look", [&] { throw lost; }); });
    EXPECT_EQ(told.code(), Failure::NoDevice);
    EXPECT_THAT(told.details(), ElementsAre("port 3"));
    const auto refuse = [] { throw Plugin::IOPluginException("no answer"); };
    EXPECT_THROW(hand.call(longEnough, "ask", refuse), Plugin::IOPluginException);
    EXPECT_STREQ(failureOf([&] { hand.step(longEnough, "ask LEFT", refuse); }).what(),
                 "cannot ask LEFT: I/O failure: no answer");
}

/// Hangs in the gate. However slow the machine is, the work has begun when it is given up.
Failure hangIn(const Hand& hand, const std::string& what, Gate& gate) {
    Failure late = failureOf([&] { static_cast<void>(hand.call(20ms, what, gate.work())); });
    while (hand.hangsIn().empty())
        late = failureOf([&] { static_cast<void>(hand.call(20ms, what, gate.work())); });
    EXPECT_EQ(hand.hangsIn(), what);
    return late;
}

TEST(Hand, NamesWhatHangsAndDropsWhatComesLate) {
    Gate gate;
    const Hand hand("LEFT", {});
    const Failure late = hangIn(hand, "open LEFT", gate);
    EXPECT_EQ(late.code(), Failure::TimedOut);
    EXPECT_STREQ(late.what(), "cannot open LEFT: it has not come back for 0.02 s");

    bool wasRun = false;
    const auto start = std::chrono::steady_clock::now();
    const Failure next = failureOf([&] { hand.call(1h, "start LEFT", [&] { wasRun = true; }); });
    EXPECT_LT(std::chrono::steady_clock::now() - start, longEnough);
    EXPECT_EQ(next.code(), Failure::TimedOut);
    EXPECT_THAT(next.what(),
                MatchesRegex("cannot start LEFT: what came before has not come back for .* s: open LEFT"));

    gate.open.set_value();
    const auto place = gate.ended.get_future().get();
    while (!hand.hangsIn().empty())
        std::this_thread::yield();
    // The result ends on the hand's thread as well, for that may hang, too.
    EXPECT_EQ(hand.call(longEnough, "ask", std::this_thread::get_id), place);
    EXPECT_FALSE(wasRun);
}

TEST(Hand, WaitsInLineWithinItsOwnLimitAndNeverRunsWhatItGaveUp) {
    Gate gate;
    const Hand hand("LEFT", {});
    std::thread first([&] { static_cast<void>(hand.call(1h, "start LEFT", gate.work())); });
    gate.begun.get_future().wait();
    bool wasRun = false;
    const Failure given = failureOf([&] { hand.call(20ms, "ask LEFT", [&] { wasRun = true; }); });
    EXPECT_EQ(given.code(), Failure::TimedOut);
    EXPECT_THAT(given.what(), testing::HasSubstr(": start LEFT"));
    EXPECT_EQ(hand.hangsIn(), ""); // its own caller has not given it up
    gate.open.set_value();
    first.join();
    hand.call(longEnough, "ask", [] {});
    EXPECT_FALSE(wasRun);
}

TEST(Hand, GoesWithinItsPatienceAndTellsWhatItLeavesBehind) {
    std::vector<std::string> notes;
    const auto note = [&](const std::string& text) { notes.push_back(text); };
    Gate gate;
    std::promise<void> disposed;
    auto start = std::chrono::steady_clock::now();
    {
        const Hand hand("LEFT", note);
        hangIn(hand, "stop LEFT", gate);
        hand.leave("close LEFT", [&] { disposed.set_value(); });
        start = std::chrono::steady_clock::now();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, Hand::patience + longEnough);
    EXPECT_THAT(notes,
                ElementsAre(MatchesRegex("LEFT is left behind.*: it is still to stop LEFT, for .* s")));
    gate.open.set_value(); // now it comes back after all, and what was left is done
    disposed.get_future().wait();

    notes.clear();
    Gate second;
    {
        const Hand hand("LEFT", note);
        hand.leave("close LEFT", second.work());
        second.begun.get_future().wait();
        EXPECT_EQ(failureOf([&] { hand.call(20ms, "ask", [] {}); }).code(), Failure::TimedOut);
        EXPECT_EQ(hand.hangsIn(), "close LEFT") << "nobody waited for it before";
        second.open.set_value();
    }
    bool closed = false;
    {
        const Hand hand("LEFT", note);
        hand.leave("close LEFT", [&] { closed = true; });
    }
    EXPECT_TRUE(closed);
    EXPECT_THAT(notes, testing::IsEmpty());
}

} // namespace
} // namespace Zentara::Host
