#include <atomic>
#include <cstring>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/host/capture.h>
#include <zentara/host/failure.h>
#include <zentara/host/frame_set.h>
#include <zentara/host/stream.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/files.h>

#include "host/streams/fake_source.h"
#include "support/failure.h"
#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::codeOf;
using TestSupport::messageOf;

constexpr auto forEver = 1h;
constexpr auto soon = 20s; ///< for what is to come

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
    camera->frame(7, 1'080'000);
    ASSERT_TRUE(camera->waitForReads(8));
    stream.stop();
    EXPECT_FALSE(stream.next(soon)) << "what was queued goes";
}

TEST_F(StreamTest, DropsNothingForWhoeverWantsAll) {
    Stream stream = camera->stream({.queue = 1, .keepsAll = true});
    EXPECT_FALSE(stream.poll());
    for (const std::uint16_t number : {1, 2, 3, 4})
        camera->frame(number, 1'000'000 + 10'000 * number);
    camera->status(ReadBufferStatus_NOT_STREAMING);
    ASSERT_TRUE(camera->waitForReads(2));
    for (const std::uint16_t number : {1, 2, 3, 4})
        EXPECT_THAT(stream.next(soon)->depth(), ElementsAre(number, 7));
    EXPECT_FALSE(stream.next(soon));
    EXPECT_EQ(stream.counts(), (StreamCounts{4, 4, 0, 0, 0}));
}

TEST_F(StreamTest, TellsTheEndSilenceUnpluggingAndFailureApart) {
    const auto wants = [](int bytes) { // 0 for as many as there are
        return [bytes](void*, int size, std::int64_t*, int* length) {
            *length = bytes == 0 ? size : bytes;
            return ReadBufferStatus_TOO_SMALL;
        };
    };
    const std::tuple<FakeStep, Failure::Code, const char*, Stream::State> cases[]{
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
        {wants(0), Failure::Failed, "does not take one of", Stream::State::Failed},
        {wants(1 << 30), Failure::Failed, "does not take one of", Stream::State::Failed}};
    for (const auto& [step, code, text, state] : cases) {
        const auto left = std::make_shared<FakeCamera>();
        Stream stream = left->stream();
        left->frame(1, 0);
        left->then(step);
        EXPECT_TRUE(stream.next(soon));
        for (int round = 0; round < 2; ++round) {
            const auto limit = code == Failure::TimedOut && state == Stream::State::Streaming ? 50ms : soon;
            if (code == Failure::None) {
                EXPECT_FALSE(stream.next(limit));
                continue;
            }
            EXPECT_EQ(codeOf([&] { (void)stream.next(limit); }), code) << text;
        }
        EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(0ms); }),
                    HasSubstr(code == Failure::TimedOut && state == Stream::State::Streaming
                                  ? "nothing came from LEFT"
                                  : (code == Failure::None ? "nothing was thrown" : text)));
        EXPECT_EQ(stream.state(), state) << text;
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
    const std::pair<const char*, std::function<void(FakeCamera&)>> cases[]{
        {"LEFT does not return from reading; 0 frames had come; it is left behind",
         [](FakeCamera& left) {
             left.then([&left](auto...) {
                 left.hang();
                 return ReadBufferStatus_NOT_STREAMING;
             });
         }},
        {"cannot stop the stream of LEFT", [](FakeCamera& left) { left.onStop = [&left] { left.hang(); }; }},
        {"cannot close LEFT", [](FakeCamera& left) { left.onClose = [&left] { left.hang(); }; }}};
    for (const auto& [note, prepare] : cases) {
        const auto left = std::make_shared<FakeCamera>();
        prepare(*left);
        std::optional<Stream> stream = left->stream();
        ASSERT_TRUE(left->waitForReads(1));
        const auto begin = steady_clock::now();
        stream.reset();
        EXPECT_LT(steady_clock::now() - begin, 2500ms) << note;
        EXPECT_THAT(left->notes, testing::Contains(HasSubstr(note)));
        EXPECT_EQ(left->gone, 0);
        left->release();
        for (int tries = 0; tries < 2000 && left->gone == 0; ++tries)
            std::this_thread::sleep_for(10ms);
        EXPECT_EQ(left->gone, 1) << "what comes back after all goes: " << note;
    }
}

TEST_F(StreamTest, TellsWhoStopsItWhatHangs) {
    Stream stream = camera->stream();
    camera->then([this](auto...) {
        camera->hang();
        return ReadBufferStatus_NOT_STREAMING;
    });
    ASSERT_TRUE(camera->waitForReads(1));
    EXPECT_THAT(messageOf<Failure>([&] { stream.stop(); }),
                HasSubstr("LEFT does not return from reading; 0 frames had come"));
    EXPECT_EQ(stream.hangsIn(), "read from LEFT");
    camera->release();
}

TEST_F(StreamTest, ReportsADeviceThatRefusesToStop) {
    Stream stream = camera->stream();
    camera->onStop = [] { throw Plugin::IOPluginException("no"); };
    EXPECT_THAT(messageOf<Failure>([&] { stream.stop(); }),
                HasSubstr("cannot stop the stream of LEFT: I/O failure: no"));
    EXPECT_THAT(camera->notes, testing::IsEmpty());
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
    EXPECT_STREQ(stream.trouble().value().what(), "LEFT was unplugged after 1 units");
    camera->frame(2, 1'000); // its clock began anew
    missing = 0;
    const auto back = stream.next(soon);
    ASSERT_TRUE(back);
    EXPECT_FALSE(stream.trouble());
    EXPECT_TRUE(back->isFirstAfterReturn());
    EXPECT_EQ(back->droppedBefore(), 0U);
    EXPECT_EQ(back->number(), 1U);
    EXPECT_EQ(stream.counts().absences, 1U);

    std::atomic<int> closed{0};
    camera->onClose = [&] { ++closed; };
    camera->info.mode.name = "OTHER";
    camera->status(ReadBufferStatus_DISCONNECTED);
    const int before = camera->tried;
    while (camera->tried < before + 2)
        std::this_thread::sleep_for(5ms);
    EXPECT_THAT(messageOf<Failure>([&] { (void)stream.next(0ms); }),
                HasSubstr("LEFT came back in another mode"));
    stream.stop();
    EXPECT_EQ(camera->gone, camera->opened) << "none is kept";
    EXPECT_EQ(closed, camera->opened - 1) << "the first one before";
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
    const std::optional<Frame> third = stream.next(soon); // at once, though the thread has yet to see it
    ASSERT_TRUE(third);
    EXPECT_THAT(third->depth(), ElementsAre(3, 7));
    setFrameMemoryLimit(limit);
}

/// Takes until there is enough.
void takeAll(Capture& capture) {
    for (capture.start(); !capture.isOver(); capture.take())
        std::this_thread::yield();
}

TEST_F(StreamTest, IsCapturedAndMeasured) {
    const TestSupport::TemporaryDirectory directory;
    camera->info.millimetresPerUnit = 0.5F;
    Capture capture(camera->stream({.started = false, .keepsAll = true}), {.most = 4});
    capture.writeTo(std::make_unique<RawFile>(directory.path("raw")));
    camera->frame(0, 1'000'000);
    camera->frame(3000, 1'030'000); // two were lost before it
    camera->frame(1000, 1'040'000);
    camera->frame(9, -7'000'000); // the device's clock begins anew
    camera->frame(1, 0);
    takeAll(capture);
    const StreamStatistics& came = capture.statistics();
    EXPECT_EQ(came.frames(), 4U);
    EXPECT_EQ(came.dropped(), 2U);
    EXPECT_EQ(came.nearestMillimetres(), 4);
    EXPECT_EQ(came.farthestMillimetres(), 1500);
    EXPECT_DOUBLE_EQ(came.seconds(), 0.04);
    EXPECT_DOUBLE_EQ(came.framesPerSecond(), 50);
    EXPECT_DOUBLE_EQ(came.withoutDepth(), 1.0 / 8);
    capture.commit();
    EXPECT_EQ(Utils::readFile(directory.path("raw")).size(), 16U) << "none but those that were wanted";
}

TEST_F(StreamTest, IsCapturedToTheSample) {
    const TestSupport::TemporaryDirectory directory;
    camera->info.mode = {
        .kind = Kind::Audio, .name = "MONO", .rate = 1000, .channels = 1, .bitsPerSample = 16};
    Capture capture(camera->stream({.started = false, .keepsAll = true}), {.most = 3});
    capture.writeTo(std::make_unique<WavFile>(directory.path("wav"), camera->info.mode, 3));
    camera->frame(1, 0);
    camera->frame(2, 2000);
    takeAll(capture);
    EXPECT_EQ(capture.taken(), 3U);
    EXPECT_EQ(capture.statistics().samples(), 4U);
    capture.commit();
    EXPECT_EQ(Utils::readFile(directory.path("wav")).substr(40), std::string("\6\0\0\0\1\0\7\0\2\0", 10));
}

TEST_F(StreamTest, IsNotCapturedForEverNorByHalf) {
    for (const bool ends : {false, true}) {
        if (ends)
            camera->status(ReadBufferStatus_NOT_STREAMING);
        Capture capture(camera->stream({.started = false}), {.longestSilence = 30ms});
        EXPECT_THAT(messageOf<Failure>([&] { takeAll(capture); }),
                    HasSubstr(ends ? "LEFT ended its stream after 0 units"
                                   : "nothing came from LEFT for 0.03 s; 0 frames had come"));
    }
}

/// Depth at 100 frames a second, colour at 50, and sound in blocks of 10 ms; times in milliseconds.
class FrameSetsTest : public testing::Test {
protected:
    FrameSetsTest() {
        color->info.mode.kind = Kind::Color;
        color->info.mode.rate = 50;
        audio->info.mode = {
            .kind = Kind::Audio, .name = "MONO", .rate = 1000, .channels = 1, .bitsPerSample = 16};
    }

    void depthAt(int time) { depth->frame(static_cast<std::uint16_t>(time), base + 1000 * time); }
    void colorAt(int time) { color->frame(static_cast<std::uint16_t>(time), base + 1000 * time); }
    void soundAt(int time) { audio->frame(static_cast<std::uint16_t>(time), base + 1000 * time, 10); }

    FrameSets sets(bool withSound, std::chrono::milliseconds patience = 5s) {
        std::vector<Stream> streams;
        for (const auto& camera : {depth, color, audio}) {
            if (camera != audio || withSound)
                streams.push_back(camera->stream({.queue = 20, .started = false}));
        }
        return {std::move(streams), {patience}};
    }

    /// "DEPTH COLOUR: SOUND, what is missing".
    static std::string text(const std::optional<FrameSet>& set) {
        if (!set)
            return "end";
        const auto first = [](const Frame& frame) {
            std::uint16_t value = 0;
            std::memcpy(&value, frame.bytes().data(), sizeof value);
            return std::to_string(value);
        };
        std::string words =
            (set->depth ? first(*set->depth) : "-") + " " + (set->color ? first(*set->color) : "-") + ":";
        for (const Frame& block : set->audio)
            words += " " + first(block);
        for (const std::string& one : set->missing)
            words += ", " + one;
        return words;
    }

    const std::shared_ptr<FakeCamera> depth = std::make_shared<FakeCamera>();
    const std::shared_ptr<FakeCamera> color = std::make_shared<FakeCamera>();
    const std::shared_ptr<FakeCamera> audio = std::make_shared<FakeCamera>();
    const std::int64_t base = Utils::Clock::nowMicros() - 500'000; ///< a device whose clock is the host's
};

TEST_F(FrameSetsTest, PutsTogetherWhatWasTakenAtOneTime) {
    for (int time = 0; time < 50; time += 10)
        depthAt(time);
    for (const int time : {1, 21, 41})
        colorAt(time);
    for (int time = 0; time < 70; time += 10)
        soundAt(time);
    for (const auto& one : {depth, color, audio})
        one->status(ReadBufferStatus_NOT_STREAMING);
    FrameSets together = sets(true);
    const auto first = together.next(soon);
    EXPECT_EQ(text(first), "0 1: 0 10 20");
    EXPECT_EQ(first->endMicros - first->beginMicros, 20'000);
    EXPECT_EQ(text(together.next(soon)), "20 21: 30 40");
    EXPECT_EQ(text(together.next(soon)), "40 41: 50 60");
    EXPECT_EQ(text(together.next(forEver)), "end");
}

TEST_F(FrameSetsTest, GivesWhatThereIsAndSaysWhatIsMissing) {
    for (const int time : {0, 10, 20, 30, 40, 60, 70})
        depthAt(time);
    for (const int time : {1, 41, 81}) // 21 was lost, and so was the depth of 81
        colorAt(time);
    soundAt(0);
    color->status(ReadBufferStatus_DISCONNECTED);
    FrameSets together = sets(true, 100ms);
    EXPECT_EQ(text(together.next(soon)), "0 1: 0, audio: it ends 11 ms early");
    EXPECT_EQ(text(together.next(soon)), "20 -:, color: nothing within 10 ms, audio: there is none");
    EXPECT_EQ(text(together.next(soon)), "40 41:, audio: there is none");
    EXPECT_EQ(text(together.next(soon)), "60 -:, color: nothing within 10 ms, audio: there is none");
    EXPECT_EQ(text(together.next(soon)), "- 81:, depth: nothing within 10 ms, audio: there is none");
    EXPECT_THAT(messageOf<Failure>([&] { (void)together.next(soon); }), HasSubstr("LEFT was unplugged"));
    depthAt(100);
    EXPECT_EQ(text(together.next(soon)), "100 -:, color: its stream has ended, audio: there is none");
    EXPECT_THAT(messageOf<Failure>([&] { (void)together.next(30ms); }),
                HasSubstr("no set of frames came from LEFT"));
    std::thread stopping([&] { together.stop(); });
    EXPECT_EQ(text(together.next(forEver)), "end");
    stopping.join();
}

TEST_F(FrameSetsTest, TakesDevicesOfAnyClockAndRefusesTwoOfOneKind) {
    depth->info.mode.rate = color->info.mode.rate = 1; // half a second is near enough
    color->frame(2, -5'000'000);
    depthAt(490); // the colour counts from its arrival, late on a busy machine
    FrameSets together = sets(false, 20s);
    color->frame(3, -4'000'000);
    EXPECT_EQ(text(together.next(soon)), "490 2:");
    color->info.mode.kind = Kind::Depth;
    EXPECT_THAT(messageOf<Failure>([&] { (void)sets(false); }),
                HasSubstr("there is another stream of its kind"));
}

TEST_F(FrameSetsTest, EndInTwoSecondsHoweverManyDevicesHang) {
    for (const auto& one : {depth, color, audio})
        one->onStop = [device = one.get()] { device->hang(); };
    std::optional<FrameSets> together = sets(true);
    const auto begin = steady_clock::now();
    together.reset();
    EXPECT_LT(steady_clock::now() - begin, 3s);
    for (const auto& one : {depth, color, audio}) {
        EXPECT_THAT(one->notes, testing::Contains(HasSubstr("cannot stop the stream of LEFT")));
        one->release();
    }
}

TEST_F(FrameSetsTest, ShowsColourInTheGridOfDepth) {
    depth->info.lens = color->info.lens =
        CameraIntrinsics{.width = 2, .height = 1, .fx = 1, .fy = 1, .cx = 0.5F, .cy = 0};
    depth->info.mode.rate = 50;
    depth->frame(0, base);
    color->frame(128 << 8 | 235, base); // white, and as white
    FrameSets together = sets(false, 100ms);
    auto set = together.next(soon);
    ASSERT_TRUE(set && set->depth && set->color);
    EXPECT_THAT(messageOf<Failure>([&] { (void)colourOf(*set); }),
                HasSubstr("the pose of its colour camera"));
    StreamInfo posed = set->depth->info();
    posed.pose = ExtrinsicParametersInternal{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    set->depth = Frame(std::make_shared<StreamInfo>(posed), set->depth->bytes());
    const auto colors = colourOf(*set);
    ASSERT_EQ(colors.size(), 2U);
    EXPECT_FALSE(colors[0]) << "there is no depth";
    EXPECT_TRUE(colors[1]);
    set->color.reset();
    EXPECT_EQ(codeOf([&] { (void)colourOf(*set); }), Failure::Usage);
}

} // namespace
} // namespace Zentara::Host
