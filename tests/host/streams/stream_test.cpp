#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/host/failure.h>
#include <zentara/host/stream.h>

#include "host/streams/fake_source.h"
#include "support/failing_allocation.h"
#include "support/failure.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::messageOf;

constexpr auto forEver = 1h;
constexpr auto soon = 20s; ///< for what is to come

Failure::Code codeOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const Failure& failure) {
        return failure.code();
    }
    return Failure::None;
}

class StreamTest : public testing::Test {
protected:
    const std::shared_ptr<FakeCamera> camera = std::make_shared<FakeCamera>();
};

TEST_F(StreamTest, GivesFramesOutInOrderAndCountsWhatIsMissing) {
    Stream stream = camera->stream({.queue = 2});
    camera->frame(1, 1'000'000);
    const auto first = stream.next(soon);
    ASSERT_TRUE(first);
    EXPECT_THAT(first->depth(), ElementsAre(1, 7));
    EXPECT_EQ(first->droppedBefore(), 0U);
    EXPECT_EQ(first->info().camera.name, "LEFT");

    camera->frame(2, 1'030'000); // 2 are lost on the way
    for (const std::uint16_t number : {3, 4, 5})
        camera->frame(number, 1'010'000 + 10'000 * number);
    ASSERT_TRUE(camera->waitForReads(6));
    const auto fourth = stream.next(soon); // 2 and 3 went from the queue
    ASSERT_TRUE(fourth);
    EXPECT_THAT(fourth->depth(), ElementsAre(4, 7));
    EXPECT_EQ(fourth->number(), 3U);
    EXPECT_EQ(fourth->droppedBefore(), 2U + 1 + 1);
    EXPECT_EQ(fourth->deviceMicros(), 1'050'000);
    EXPECT_GE(fourth->hostMicros(), first->hostMicros());
    camera->frame(6, 1'070'000);
    ASSERT_TRUE(camera->waitForReads(7));
    const auto last = stream.latest(soon);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->number(), 5U);
    EXPECT_EQ(last->droppedBefore(), 1U);
    EXPECT_EQ(stream.counts(), (StreamCounts{6, 3, 2, 3, 0}));
}

TEST_F(StreamTest, TellsTheEndSilenceUnpluggingAndFailureApart) {
    const struct {
        FakeStep step;
        Failure::Code code;
        const char* text;
        Stream::State state;
    } cases[]{
        {[](auto...) { return ReadBufferStatus_NOT_STREAMING; }, Failure::None, "", Stream::State::Ended},
        {[](auto...) { return ReadBufferStatus_TIMEOUT; }, Failure::TimedOut,
         "nothing came from LEFT for 0.05 s; 1 frames had come", Stream::State::Streaming},
        {[](auto...) { return ReadBufferStatus_FAILED; }, Failure::TimedOut, "nothing came from LEFT",
         Stream::State::Streaming},
        {[](auto...) { return ReadBufferStatus_DISCONNECTED; }, Failure::NoDevice,
         "LEFT was unplugged after 1 units", Stream::State::Unplugged},
        {[](auto...) -> ReadBufferStatus { throw Plugin::TimeoutPluginException("bulb"); }, Failure::TimedOut,
         "cannot read unit 1 from LEFT: timed out: bulb", Stream::State::Failed},
        {[](auto...) -> ReadBufferStatus { throw 5; }, Failure::Failed, "unknown exception",
         Stream::State::Failed},
        {[](auto...) { return static_cast<ReadBufferStatus>(77); }, Failure::Failed, "ended with status 77",
         Stream::State::Failed},
        {[](void*, int size, std::int64_t*, int* length) {
             *length = size + 1;
             return ReadBufferStatus_OK;
         },
         Failure::Failed, "bytes into a buffer of", Stream::State::Failed},
        {[](void*, int size, std::int64_t*, int* length) {
             *length = size;
             return ReadBufferStatus_TOO_SMALL;
         },
         Failure::Failed, "does not take one of", Stream::State::Failed}};
    for (const auto& row : cases) {
        const auto left = std::make_shared<FakeCamera>();
        Stream stream = left->stream();
        left->frame(1, 0);
        left->then(row.step);
        EXPECT_TRUE(stream.next(soon));
        for (int round = 0; round < 2; ++round) {
            const auto limit =
                row.code == Failure::TimedOut && row.state == Stream::State::Streaming ? 50ms : soon;
            if (row.code == Failure::None) {
                EXPECT_FALSE(stream.next(limit));
                continue;
            }
            EXPECT_EQ(codeOf([&] { (void)stream.next(limit); }), row.code) << row.text;
        }
        EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(0ms); }),
                    HasSubstr(row.code == Failure::TimedOut && row.state == Stream::State::Streaming
                                  ? "nothing came from LEFT"
                                  : (row.code == Failure::None ? "nothing was thrown" : row.text)));
        EXPECT_EQ(stream.state(), row.state) << row.text;
    }
}

TEST_F(StreamTest, GivesABiggerBufferToWhoeverWantsOne) {
    Stream stream = camera->stream();
    camera->then([](void*, int, std::int64_t*, int* length) {
        *length = 100'000;
        return ReadBufferStatus_TOO_SMALL;
    });
    camera->then([](void* buffer, int size, std::int64_t*, int* length) {
        std::memset(buffer, 1, static_cast<std::size_t>(size));
        *length = size;
        return ReadBufferStatus_OK;
    });
    const auto frame = stream.next(soon);
    ASSERT_TRUE(frame);
    EXPECT_GE(frame->bytes().size(), 100'000U);
}

TEST_F(StreamTest, TellsWhyItCannotBegin) {
    EXPECT_EQ(codeOf([&] { (void)camera->stream({.queue = 0}); }), Failure::Usage);
    camera->onOpen = [] { throw Plugin::UnauthorizedAccessPluginException("lens cap"); };
    EXPECT_THAT(messageOf<Failure>([&] { (void)camera->stream(); }),
                HasSubstr("cannot open LEFT: not permitted"));
    camera->onOpen = [] {};
    camera->onStart = [] { throw Plugin::IOPluginException("lens cap"); };
    Stream stream = camera->stream({.started = false});
    EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(0ms); }), HasSubstr("has not been started"));
    EXPECT_THAT(messageOf<Failure>([&] { stream.start(); }), HasSubstr("cannot stream SMALL from LEFT: I/O"));
    EXPECT_EQ(codeOf([&] { (void)stream.next(forEver); }), Failure::Failed);
}

TEST_F(StreamTest, WakesWhoeverWaitsWhenItIsStopped) {
    Stream stream = camera->stream();
    int asked = 0;
    EXPECT_EQ(codeOf([&] { (void)stream.next(forEver, [&] { return ++asked < 2; }); }), Failure::Interrupted);
    std::atomic<bool> waits{false};
    std::optional<Frame> frame;
    steady_clock::time_point woken;
    std::thread waiting([&] {
        waits = true;
        frame = stream.next(forEver);
        woken = steady_clock::now();
    });
    while (!waits)
        std::this_thread::yield();
    camera->onStop = [] { std::this_thread::sleep_for(300ms); }; // a device that takes its time
    const auto begin = steady_clock::now();
    stream.stop();
    waiting.join();
    EXPECT_FALSE(frame);
    EXPECT_LT(woken - begin, 100ms);
    EXPECT_FALSE(stream.next(forEver));
    stream.stop();
    EXPECT_EQ(camera->gone, 1) << "the device is given back";
}

TEST_F(StreamTest, EndsInTwoSecondsWhateverHangsAndTellsIt) {
    const struct {
        const char* note;
        std::function<void(FakeCamera&)> prepare;
    } cases[]{
        {"LEFT does not return from reading; 0 frames had come; it is left behind",
         [](FakeCamera& left) {
             left.then([&left](auto...) {
                 left.hang();
                 return ReadBufferStatus_NOT_STREAMING;
             });
         }},
        {"cannot stop the stream of LEFT", [](FakeCamera& left) { left.onStop = [&left] { left.hang(); }; }},
        {"cannot close LEFT", [](FakeCamera& left) { left.onClose = [&left] { left.hang(); }; }}};
    for (const auto& row : cases) {
        const auto left = std::make_shared<FakeCamera>();
        row.prepare(*left);
        std::optional<Stream> stream = left->stream();
        ASSERT_TRUE(left->waitForReads(1));
        const auto begin = steady_clock::now();
        stream.reset();
        EXPECT_LT(steady_clock::now() - begin, 2500ms) << row.note;
        EXPECT_THAT(left->notes, testing::Contains(HasSubstr(row.note)));
        EXPECT_EQ(left->gone, 0);
        left->release();
        for (int tries = 0; tries < 2000 && left->gone == 0; ++tries)
            std::this_thread::sleep_for(10ms);
        EXPECT_EQ(left->gone, 1) << "what comes back after all goes: " << row.note;
    }
}

TEST_F(StreamTest, ReportsADeviceThatRefusesToStop) {
    Stream stream = camera->stream();
    camera->onStop = [] { throw Plugin::IOPluginException("no"); };
    EXPECT_THAT(messageOf<Failure>([&] { stream.stop(); }),
                HasSubstr("cannot stop the stream of LEFT: I/O failure: no"));
    EXPECT_THAT(camera->notes, IsEmpty());
}

TEST_F(StreamTest, GoesOnWhenTheCameraIsBack) {
    std::atomic<int> missing{0};
    camera->onOpen = [&] {
        if (missing > 0) {
            --missing;
            throw Failure(Failure::NoDevice, "there is no LEFT");
        }
    };
    Stream stream = camera->stream({.awaitReturn = true});
    camera->frame(1, 5'000'000);
    EXPECT_TRUE(stream.next(soon));
    missing = 1000;
    camera->status(ReadBufferStatus_DISCONNECTED);
    EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(1s); }),
                HasSubstr("LEFT was unplugged after 1 units and did not come back"));
    EXPECT_EQ(codeOf([&] { (void)stream.next(0ms); }), Failure::NoDevice);
    EXPECT_EQ(stream.state(), Stream::State::Away);
    camera->frame(2, 1'000); // its clock began anew
    missing = 0;
    const auto back = stream.next(soon);
    ASSERT_TRUE(back);
    EXPECT_TRUE(back->isFirstAfterReturn());
    EXPECT_EQ(back->droppedBefore(), 0U);
    EXPECT_EQ(back->number(), 1U);
    EXPECT_EQ(stream.counts().absences, 1U);

    camera->info.mode.name = "OTHER";
    camera->status(ReadBufferStatus_DISCONNECTED);
    const int before = camera->tried;
    while (camera->tried < before + 2)
        std::this_thread::sleep_for(5ms);
    EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(0ms); }),
                HasSubstr("LEFT came back in another mode"));
    stream.stop();
    EXPECT_EQ(camera->gone, camera->opened) << "none is kept";
}

TEST_F(StreamTest, FailsWhileTheHostHoldsAllTheMemoryThereMayBe) {
    const std::size_t limit = frameMemoryLimit();
    Stream stream = camera->stream({.queue = 1});
    camera->frame(1, 10'000);
    std::optional<Frame> held = stream.next(soon);
    ASSERT_TRUE(camera->waitForReads(3)); // it has memory for the next one
    setFrameMemoryLimit(frameMemoryTaken());
    camera->frame(2, 20'000);
    const auto second = stream.next(soon);
    EXPECT_TRUE(second);
    EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(forEver); }),
                testing::AllOf(HasSubstr("LEFT"), HasSubstr("exceed the limit of")));
    EXPECT_EQ(codeOf([&] { (void)stream.next(forEver); }), Failure::Failed);
    held.reset();
    camera->frame(3, 30'000);
    std::optional<Frame> third;
    while (!third) {
        try {
            third = stream.next(soon);
        } catch (const Failure&) {
            std::this_thread::yield(); // the thread looks again in a moment
        }
    }
    EXPECT_THAT(third->depth(), ElementsAre(3, 7));
    setFrameMemoryLimit(limit);
}

// The bytes that the source writes are those of the frame, and neither thread asks for memory once the stream runs.
TEST_F(StreamTest, CopiesNothingAndNeedsNoMemoryOnceItRuns) {
    constexpr int begun = 20;
    constexpr int frames = 100;
    Stream stream = camera->stream();
    std::optional<TestSupport::FailingAllocation> there; // the reading thread's
    bool asks = false;
    const void* written = nullptr;
    std::size_t taken = 0;
    for (int number = 0; number < frames; ++number) {
        camera->then([&, number](void* buffer, int, std::int64_t* micros, int* length) {
            if (number == begun)
                there.emplace(0);
            if (number == frames - 1) {
                asks = asks || there->hit();
                there.reset();
            }
            *micros = 10'000 * number;
            *length = 4;
            written = buffer;
            return ReadBufferStatus_OK;
        });
        std::optional<Frame> frame;
        {
            const TestSupport::FailingAllocation here(0);
            frame = stream.next(soon);
            asks = asks || here.hit();
        }
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->bytes().data(), written);
        if (number == begun)
            taken = frameMemoryTaken();
    }
    EXPECT_FALSE(asks);
    EXPECT_EQ(frameMemoryTaken(), taken);
}

} // namespace
} // namespace Zentara::Host
