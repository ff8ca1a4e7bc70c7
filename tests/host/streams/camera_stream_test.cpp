#include <thread>

#include <gmock/gmock.h>

#include <zentara/host/host.h>

#include "support/camera_bus.h"
#include "support/failure.h"
#include "support/stride.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::messageOf;

constexpr auto inTime = 20s;

/// The streams of a simulated camera.
class CameraStream : public testing::Test, protected TestSupport::CameraBus {
protected:
    static constexpr const char* left = R"({"model": "ZS570", "serialNumber": "LEFT"})";
    std::vector<std::string> notes;
    Cameras cameras{Cameras::Options{10s, [this](const std::string& text) { notes.push_back(text); }}};
};

TEST_F(CameraStream, DeliversWhatBelongsTogetherAndOutlivesItsCamera) {
    plug(left);
    std::optional<Camera> camera = cameras.open("LEFT");
    std::vector<Stream> streams;
    for (const Kind kind : {Kind::Depth, Kind::Color, Kind::Audio})
        streams.push_back(camera->stream(kind, {.queue = 30, .started = false}));
    EXPECT_EQ(streams[0].label(), "ZS570 depth LEFT");
    camera.reset(); // the streams keep it open
    std::optional<FrameSets> sets(std::in_place, std::move(streams));
    std::optional<FrameSet> set;
    int complete = 0; // on a busy machine one stream may begin before another, or lose frames
    for (int number = 0; complete < 5 && number < 50; ++number) {
        set = sets->next(inTime);
        ASSERT_TRUE(set);
        complete += set->missing.empty() ? 1 : 0;
    }
    ASSERT_EQ(complete, 5);
    sets.reset();
    EXPECT_EQ(set->depth->phase().size(), 320U * 240);
    EXPECT_GT(set->depth->info().millimetresPerPhaseStep, 0);
    EXPECT_FALSE(set->depth->temperatures().empty());
    const auto colors = colourOf(*set);
    LastSet last;
    last.add(*set->depth);
    EXPECT_EQ(cloudOf(last.set()).uncolored(), "color: there is none");
    last.add(*set->color);
    const PointCloud cloud = cloudOf(last.set(), {.keepGrid = true});
    EXPECT_EQ(cloud.colors().size(), colors.size());
    int ball = 0; // blue-green, and nearer than a metre; what lies behind it is of the colour of sand
    for (std::size_t i = 0; i < colors.size(); ++i)
        ball += colors[i] && cloud.points()[i].z < 1 ? (colors[i]->blue > colors[i]->red ? 1 : -50) : 0;
    EXPECT_GT(ball, 5000) << "the colour camera stands elsewhere than the scene is drawn from";
    last.add(Frame(std::make_shared<StreamInfo>(set->depth->info()), set->depth->bytes(), 9,
                   set->depth->deviceMicros() + 20'000));
    EXPECT_THAT(last.set().missing, testing::ElementsAre("color: nothing within 8.3 ms"));
    const Frame corrected = set->depth->corrected();
    EXPECT_THAT(set->depth->uncorrected(), testing::Not(IsEmpty()));
    EXPECT_THAT(corrected.uncorrected(), IsEmpty());
    EXPECT_EQ(corrected.corrections().size(), set->depth->uncorrected().size());
    ASSERT_FALSE(set->audio.empty());
    EXPECT_FALSE(set->audio.front().samples().empty());
}

TEST_F(CameraStream, EndsAtOnceWithItsCamera) {
    plug(left);
    for (std::size_t round = 0; round < 500; round += TestSupport::stride) {
        const Camera camera = cameras.open("LEFT");
        Stream stream = camera.stream(Kind::Depth);
        if (round % 10 == 0) {
            ASSERT_TRUE(stream.next(inTime));
        }
        if (round % 3 == 0) {
            camera.close();
            EXPECT_FALSE(stream.next(inTime));
        }
    }
    EXPECT_THAT(notes, testing::Each(HasSubstr("its flash does not hold")));
}

TEST_F(CameraStream, HasTheNodeToItself) {
    const TestSupport::ScopedVariable hangs("ZENTARA_SIMULATED", "hang 7000 at readBuffer after 10 times 1");
    plug(left);
    const Camera camera = cameras.open("LEFT");
    const auto refusal = [&] {
        return messageOf<Failure>([&] { static_cast<void>(camera.stream(Kind::Depth)); });
    };
    Stream stream = camera.stream(Kind::Depth, {.queue = 20});
    EXPECT_THAT(refusal(), HasSubstr("the node streams already"));
    for (int frame = 0; frame < 10; ++frame)
        ASSERT_TRUE(stream.next(inTime)) << "the one that was refused ended it";
    EXPECT_THROW(static_cast<void>(stream.next(500ms)), Failure);
    EXPECT_THAT(messageOf<Failure>([&] { stream.stop(); }), HasSubstr("does not return from reading"));
    EXPECT_THAT(refusal(), HasSubstr("the stream before it has not come back from reading"));
    while (!stream.hangsIn().empty())
        std::this_thread::sleep_for(10ms);
    EXPECT_TRUE(camera.stream(Kind::Depth).next(inTime));
}

TEST_F(CameraStream, GoesOnWhenItsCameraIsBackInAnotherSocket) {
    plug(left);
    const Camera camera = cameras.open("LEFT");
    Stream depth = camera.stream(Kind::Depth, {.awaitReturn = true});
    Stream color = camera.stream(Kind::Color, {.awaitReturn = true});
    Stream once = camera.stream(Kind::Audio);
    ASSERT_TRUE(depth.next(inTime) && color.next(inTime) && once.next(inTime));
    plug("");
    const auto drain = [](Stream& stream) {
        while (stream.next(2s)) {
        }
    };
    EXPECT_THAT(messageOf<Failure>([&] { drain(depth); }), HasSubstr("and did not come back"));
    EXPECT_THAT(messageOf<Failure>([&] { drain(once); }), HasSubstr("was unplugged after"));
    plug(std::string(R"({"model": "ZS345", "serialNumber": "RIGHT"}, )") + left);
    for (Stream* stream : {&depth, &color}) {
        std::optional<Frame> frame;
        do {
            frame = stream->next(inTime);
        } while (frame && !frame->isFirstAfterReturn());
        EXPECT_TRUE(frame);
        EXPECT_EQ(stream->counts().absences, 1U);
    }
    EXPECT_EQ(once.state(), Stream::State::Unplugged);
}

} // namespace
} // namespace Zentara::Host
