#include <zentara/utils/runnable.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread.h>
#include <zentara/utils/thread_base.h>

#include <gmock/gmock.h>

#include "support/log_capture.h"

#include <atomic>
#include <stdexcept>
#include <thread>

namespace Zentara::Utils::Threading {
namespace {

constexpr unsigned long generous = 30000;

/// What a thread function does and tells.
struct Probe {
    Signal began;
    Signal mayEnd;
    std::atomic<int> steps{0};
    unsigned long identifier = 0;
    std::atomic<ThreadBase*> thread{nullptr};

    static void step(void* argument) {
        auto& self = *static_cast<Probe*>(argument);
        self.identifier = ThreadBase::getCurrentThreadId();
        ++self.steps;
        self.began.set();
    }
    static void waitForEnd(void* argument) {
        step(argument);
        static_cast<Probe*>(argument)->mayEnd.wait();
    }
    static void park(void* argument) {
        step(argument);
        ThreadBase::suspend();
        step(argument);
    }
    static void joinItself(void* argument) {
        waitForEnd(argument);
        static_cast<Probe*>(argument)->thread.load()->join();
    }
    static void parkLate(void* argument) {
        waitForEnd(argument);
        ThreadBase::suspend();
        step(argument);
    }
};

void awaitState(const ThreadBase& thread, ThreadState state) {
    while (thread.getState() != state)
        ThreadBase::sleep(1);
}

TEST(ThreadBase, RunsAndJoinsAnyNumberOfTimes) {
    Probe probe;
    ThreadBase thread(&Probe::waitForEnd, &probe, false);
    ASSERT_EQ(probe.began.timedWait(generous), 0);
    EXPECT_EQ(thread.getState(), ThreadState_RUNNING);
    std::vector<std::thread> joiners;
    for (int i = 0; i < 3; ++i) {
        joiners.emplace_back([&] {
            thread.join();
            EXPECT_EQ(thread.getState(), ThreadState_FINISHED);
        });
    }
    probe.mayEnd.set();
    for (auto& joiner : joiners)
        joiner.join();
    thread.join();
    EXPECT_NE(probe.identifier, 0u);
    EXPECT_NE(probe.identifier, ThreadBase::getCurrentThreadId());
}

TEST(ThreadBase, ParksUntilResumed) {
    ThreadBase::suspend(); // no thread of ours: nothing happens
    Probe probe;
    ThreadBase thread(&Probe::park, &probe, true);
    EXPECT_EQ(thread.getState(), ThreadState_SUSPENDED);
    EXPECT_EQ(probe.began.timedWait(5), -1) << "a suspended start";
    thread.resume();
    ASSERT_EQ(probe.began.timedWait(generous), 0);
    awaitState(thread, ThreadState_SUSPENDED);
    EXPECT_EQ(probe.steps, 1);
    thread.resume();
    thread.join();
    EXPECT_EQ(probe.steps, 2);
}

TEST(ThreadBase, DestructorLetsGo) {
    // Static, for a thread that is let go may still be leaving when the test ends.
    static Probe running;
    static Probe parked;
    static Probe never;
    auto first = std::make_unique<ThreadBase>(&Probe::waitForEnd, &running, false);
    auto second = std::make_unique<ThreadBase>(&Probe::park, &parked, false);
    ASSERT_EQ(running.began.timedWait(generous), 0);
    ASSERT_EQ(parked.began.timedWait(generous), 0);
    awaitState(*second, ThreadState_SUSPENDED);
    first.reset();
    second.reset();
    EXPECT_EQ(parked.began.timedWait(generous), 0) << "a parked thread goes on";
    running.mayEnd.set();

    static Probe late;
    { ThreadBase thread(&Probe::parkLate, &late, false); }
    ASSERT_EQ(late.began.timedWait(generous), 0);
    late.mayEnd.set();
    EXPECT_EQ(late.began.timedWait(generous), 0) << "nobody could resume it: it does not park";

    { ThreadBase thread(&Probe::step, &never, true); }
    EXPECT_EQ(never.began.timedWait(5), -1) << "a thread never resumed does not run its function";
}

TEST(ThreadBase, JoinOnItselfReturns) {
    Probe probe;
    ThreadBase thread(&Probe::joinItself, &probe, false);
    probe.thread = &thread;
    probe.mayEnd.set();
    thread.join();
    ThreadBase::setDebuggerThreadName("a name far longer than fifteen bytes");
    ThreadBase::setDebuggerThreadName(nullptr);
}

/// Works until it is told to end.
class Worker : public Runnable {
public:
    void* run(void* argument) override {
        passed = argument;
        beganWithRequest = exitRequested();
        ++runs;
        began.set();
        while (!exitRequested())
            wake.timedWait(generous);
        if (fails)
            throw std::runtime_error("the work failed");
        return this;
    }
    void exit() override {
        Runnable::exit();
        wake.set();
    }

    std::atomic<int> runs{0};
    std::atomic<bool> beganWithRequest{false};
    std::atomic<void*> passed{nullptr};
    std::atomic<bool> fails{false};
    Signal began;
    Signal wake;
};

class Unenterable final : public Worker {
protected:
    void enter() override { throw std::runtime_error("no entry"); }
};

TEST(Thread, RunsItsRunnableUntilStopped) {
    Worker worker;
    Thread thread(&worker, &worker.wake, "worker");
    thread.wait();
    thread.stop(true);
    EXPECT_FALSE(worker.running());

    for (int round = 1; round <= 3; ++round) {
        thread.start(true);
        EXPECT_TRUE(worker.running());
        ASSERT_EQ(worker.began.timedWait(generous), 0);
        EXPECT_FALSE(thread.exitRequested() || worker.beganWithRequest)
            << "a new start forgets the old request";
        thread.start(true); // runs already
        thread.stop(true);
        EXPECT_TRUE(thread.exitRequested());
        EXPECT_FALSE(worker.running());
        EXPECT_EQ(worker.runs, round);
    }
    EXPECT_EQ(worker.passed, &worker.wake);
}

TEST(Thread, ExitRightAfterStartIsNotLost) {
    Worker worker;
    Thread thread(&worker, nullptr, nullptr);
    for (int round = 0; round < 200; ++round) {
        thread.start(false);
        thread.exit();
        thread.wait();
    }
    EXPECT_EQ(worker.runs, 200);
}

TEST(Thread, SurvivesWhatRunThrowsAndHavingNoWork) {
    const TestSupport::LogCapture log;
    Worker worker;
    worker.fails = true;
    Thread thread(&worker, nullptr, "failing");
    thread.start(false);
    thread.stop(true);
    EXPECT_FALSE(worker.running());
    Unenterable unenterable;
    Thread refused(&unenterable, nullptr, "refused");
    refused.start(true);
    refused.wait();
    EXPECT_EQ(unenterable.runs, 0);
    EXPECT_THAT(log.text(),
                testing::HasSubstr("]: ERROR:    thread 'failing' ended by an exception: the work failed\n"));
    EXPECT_THAT(log.text(),
                testing::HasSubstr("]: ERROR:    thread 'refused' ended by an exception: no entry\n"));
    Thread idle(nullptr, nullptr, "idle");
    idle.start(true);
    idle.stop(true);
}

TEST(Thread, DestructorLeavesTheThreadToItself) {
    static Worker worker;
    {
        Thread thread(&worker, nullptr, "left");
        thread.start(true);
    }
    worker.exit();
    while (worker.running())
        ThreadBase::sleep(1);
}

} // namespace
} // namespace Zentara::Utils::Threading
