#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <zentara/host/failure.h>
#include <zentara/host/flash.h>
#include <zentara/host/frame_set.h>
#include <zentara/host/point_cloud.h>
#include <zentara/host/recording.h>
#include <zentara/temperature_compensation.h>
#include <zentara/utils/files.h>

#include "host/recordings/play_clock.h"
#include "host/streams/frame_draft.h"
#include "support/failure.h"
#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using TestSupport::messageOf;
using Bytes = std::vector<std::uint8_t>;

/// A recording of a depth stream with three frames and an audio stream with one, and the bytes of its file.
class RecordingTest : public testing::Test {
protected:
    RecordingTest() {
        Recorder recorder(path("r"), streams);
        recorder.add(0, frame(0, {1, 2, 3}, 1000));
        recorder.add(1, frame(1, {7}, 1500));
        recorder.add(0, frame(0, {}, 2000));
        recorder.add(0, frame(0, {4, 5}, -3000));
        EXPECT_THROW(recorder.add(2, frame(0, {}, 0)), Failure);
        recorder.commit();
        whole = Utils::readFile(path("r"));
    }

    static std::vector<StreamInfo> describe() {
        StreamInfo depth;
        depth.camera = {"S-7", "Camera", "V", "P", "bus:7", "OV0570", {Kind::Color, Kind::Depth}, {}};
        depth.camera.nodes = {{Kind::Depth, "LEFT", "bus:7/depth", {1, 2, 3, 4}}};
        depth.mode = {.kind = Kind::Depth, .name = "DEFF1FR60CM1S1", .width = 4, .height = 2, .rate = 60};
        depth.mode.cameraMode = 1;
        depth.mode.saturation = true;
        depth.millimetresPerUnit = 0.25F;
        depth.millimetresPerPhaseStep = 0.05F;
        depth.depthAlong = DepthAlong::Ray;
        depth.lens = CameraIntrinsics{4, 2, 3, 3.5F, 1.5F, 0.5F, -0.1F, 0.01F, 0.001F, 0.002F, 0.003F};
        depth.pose = ExtrinsicParametersInternal{1, 0, 0, 0, 1, 0, 0, 0, 1, 25, 0.5F, -2};
        depth.corrections.modes[1].temperature = ModeCorrections::Temperature::Linear;
        depth.corrections.modes[1].temperatureParameters = {20};
        depth.corrections.modes[1].temperatureSensors = {3};
        depth.corrections.modes[1].calibratedAt.values = {{3, 25}};
        depth.corrections.modes[0].cyclicAlgorithm = 9;
        depth.corrections.modes[0].cyclicParameters = {0.5F, 2};
        depth.corrections.phaseDelay2 = -7;
        depth.lensSource = Source::Camera;
        depth.poseSource = Source::Description;
        depth.correctionsSource = Source::Failure;
        depth.sourceFailure = "no answer";
        StreamInfo audio;
        audio.camera = depth.camera;
        audio.mode = {.kind = Kind::Audio, .name = "AUCH2BPS16SR48000", .rate = 48000};
        audio.mode.channels = 2;
        audio.mode.bitsPerSample = 16;
        return {depth, audio};
    }

    [[nodiscard]] Frame frame(std::size_t stream, const Bytes& bytes, std::int64_t micros) const {
        return {std::make_shared<StreamInfo>(streams[stream]), std::as_bytes(std::span(bytes)), 0, micros};
    }
    [[nodiscard]] std::string path(const std::string& name) const { return directory.path(name); }

    static std::string text(std::size_t stream, const Frame& frame) {
        return std::to_string(stream) + ":" + std::to_string(frame.deviceMicros()) + ":" +
               std::to_string(frame.bytes().size());
    }

    /// Reads these bytes: what came, one word a frame, then "end" or the failure.
    std::vector<std::string> read(const std::string& bytes) {
        Utils::writeFile(path("c"), bytes);
        std::vector<std::string> seen;
        try {
            Recording recording(path("c"));
            while (const auto next = recording.next())
                seen.push_back(text(next->stream, next->frame));
            seen.emplace_back("end");
        } catch (const Failure& failure) {
            seen.emplace_back(failure.what());
        }
        return seen;
    }

    const TestSupport::TemporaryDirectory directory;
    const std::vector<StreamInfo> streams = describe();
    const std::vector<std::string> frames{"0:1000:3", "1:1500:1", "0:2000:0", "0:-3000:2"};
    std::string whole;
};

TEST_F(RecordingTest, GivesBackWhatWasRecordedInAnyOrder) {
    Recording recording(path("r"));
    EXPECT_EQ(recording.streams(), streams);
    EXPECT_EQ(recording.version(), 2);
    const std::optional<Frame> sound = recording.next(1);
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->bytes()[0], std::byte{7});
    EXPECT_EQ(recording.count(0), 3U);
    const Frame last = recording.at(0, 2);
    EXPECT_EQ(text(0, last), "0:-3000:2");
    EXPECT_EQ(last.number(), 2U);
    EXPECT_EQ(text(0, recording.at(0, 0)), "0:1000:3");
    EXPECT_EQ(recording.atTime(0, 1500).number(), 0U) << "of two that are as near the earlier one";
    EXPECT_EQ(recording.atTime(0, INT64_MIN).number(), 2U);
    EXPECT_EQ(recording.next(0)->number(), 1U) << "goes on where it was";
    EXPECT_FALSE(recording.next(1));
    recording.rewind();
    EXPECT_EQ(recording.next(0)->number(), 0U);
    EXPECT_THAT(messageOf<Failure>([&] { (void)recording.at(0, 3); }), HasSubstr("it has 3, counted from 0"));
    EXPECT_THAT(messageOf<Failure>([&] { (void)recording.next(2); }), HasSubstr("has no stream 2"));
}

TEST_F(RecordingTest, HasTheDocumentedBytes) {
    EXPECT_EQ(whole.substr(0, 12), std::string("ZTREC\r\n\x1A\x02\0\x02\0", 12));
    const std::size_t frame = whole.find("FRAM");
    EXPECT_EQ(whole.substr(frame, 20), std::string("FRAM\0\0\0\0\xE8\x03\0\0\0\0\0\0\x03\0\0\0", 20));
    EXPECT_EQ(whole.substr(frame + 24, 3), "\x01\x02\x03");
    // CRC-32 of 1, 2, 3 started at all ones, without the final inversion: 0x55BC801D inverted.
    EXPECT_EQ(whole.substr(frame + 27, 4), std::string("\xE2\x7F\x43\xAA", 4));
    EXPECT_EQ(whole.substr(whole.size() - 4 - 16 - 24, 4), "END ");
}

TEST_F(RecordingTest, ReadsTheFirstVersion) {
    constexpr char bytes[] =
        "ZTREC\r\n\x1A\x01\0\x01\0\xC9\x6B\x4C\x5F"
        "STRM\0\0\0\0\0\0\0\0\0\0\0\0\x42\0\0\0\xE0\xE9\x80\xD2\x01\0\0\0\x01\0\0\0\x3C\0\0\0\x01\0\0\0"
        "\x01\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x07\0\0\0A/depth\x01\0\0\0A\x01\0\0\0N\x01\0\0\0"
        "A\xC4\x0F\xDD\xFD"
        "FRAM\0\0\0\0\x1B\x41\0\0\0\0\0\0\x0C\0\0\0\x60\xB8\xB2\x51ZZZZZZZZZZZZ\xAC\x3F\xB9\x13";
    Utils::writeFile(path("old"), std::string(bytes, sizeof bytes - 1));
    Recording recording(path("old"));
    const StreamInfo& info = recording.streams().at(0);
    EXPECT_EQ(recording.version(), 1);
    EXPECT_EQ(info.camera.label() + " " + info.camera.nodes.at(0).path, "N A A/depth");
    EXPECT_EQ(info.mode.name + " " + info.mode.text(), "DEFF1FR60CM1S1 160x120@60");
    EXPECT_FALSE(info.lens);
    EXPECT_EQ(info.lensSource, Source::Unknown);
    EXPECT_EQ(text(0, recording.next()->frame), "0:16667:12");
    EXPECT_THAT(messageOf<Failure>([&] { (void)recording.next(); }), HasSubstr("it is cut short"));
}

TEST_F(RecordingTest, EveryCutDeliversTheWholeFramesBeforeItAndThenFails) {
    std::vector<std::size_t> ends; // of each frame's chunk
    for (const std::size_t length : {3, 1, 0, 2})
        ends.push_back(whole.find("FRAM", ends.empty() ? 0 : ends.back()) + 24 + length + 4);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto seen = read(whole.substr(0, length));
        std::size_t complete = 0;
        while (complete < ends.size() && ends[complete] <= length)
            ++complete;
        ASSERT_EQ(seen.size(), complete + 1) << "cut at " << length << ": " << seen.back();
        EXPECT_TRUE(std::equal(seen.begin(), seen.end() - 1, frames.begin())) << length;
        EXPECT_THAT(seen.back(), testing::AnyOf(HasSubstr("cut short"), HasSubstr("it is no recording")))
            << length;
    }
    EXPECT_EQ(read(whole).back(), "end");
    Utils::writeFile(path("c"), whole.substr(0, ends[2]));
    Recording cut(path("c"));
    EXPECT_EQ(cut.count(0), 2U);
    EXPECT_THAT(messageOf<Failure>([&] { (void)cut.at(0, 2); }),
                AllOf(HasSubstr("it has 2"), HasSubstr("cut short")));
}

TEST_F(RecordingTest, EveryWrongByteIsNoticed) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ 0x41);
        const auto seen = read(bytes);
        EXPECT_THAT(seen.back(), HasSubstr("recording '")) << "byte " << at;
        EXPECT_TRUE(std::equal(seen.begin(), seen.end() - 1, frames.begin())) << "byte " << at;
    }
    EXPECT_THAT(read(whole + "x").back(), HasSubstr("1 bytes follow the end"));
    const std::size_t second = whole.find("FRAM", whole.find("FRAM") + 1);
    EXPECT_THAT(read(whole.substr(0, whole.find("FRAM")) + whole.substr(second)).back(),
                HasSubstr("stream 0 was recorded with 3 frames and has 2"));
}

TEST_F(RecordingTest, RefusesWhatNoStreamCanBe) {
    std::vector<StreamInfo> wrong;
    const auto with = [&](std::size_t stream) -> StreamInfo& { return wrong.emplace_back(streams[stream]); };
    for (const Kind kind : {Kind(9), Kind(-1), Kind::Audio})
        with(0).mode.kind = kind;
    for (const std::uint32_t number : {0U, 1U << 31}) {
        with(0).mode.width = number;
        with(0).mode.height = number;
        with(0).mode.rate = number;
        with(1).mode.rate = number;
    }
    for (const int number : {0, 65}) {
        with(1).mode.channels = number;
        with(1).mode.bitsPerSample = number;
    }
    with(0).depthAlong = DepthAlong(2);
    for (const int word : {-1, 99}) {
        with(0).poseSource = Source(word);
        with(0).camera.kinds = {Kind(word)};
        with(0).corrections.modes[1].temperature = ModeCorrections::Temperature(word);
    }
    with(0).camera.kinds.resize(1025, Kind::Depth);
    with(0).corrections.modes[0].cyclicParameters.resize(1025);
    for (std::size_t row = 0; row < wrong.size(); ++row) {
        Recorder(path("r"), {wrong[row]}).commit();
        EXPECT_THROW(Recording recording(path("r")), Failure) << row;
    }
    for (const char* name : {"none", ""})
        EXPECT_THROW(Recording recording(path(name)), Failure) << name;
    EXPECT_THROW(Recorder(path("r"), {}), Failure);
    { Recorder recorder(path("gone"), streams); }
    EXPECT_FALSE(std::filesystem::exists(TestSupport::TemporaryDirectory::fromUtf8(path("gone"))))
        << "without a commit no file is left";
}

TEST_F(RecordingTest, BecomesACloudWithoutItsCamera) {
    const std::vector<std::uint16_t> planes{0, 4000, 8000, 4000, 4000, 4000, 4000, 4000,
                                            0, 9,    9,    9,    9,    9,    1,    9};
    FrameDraft draft(std::make_shared<const StreamContext>(streams[0]), 32, "make a frame");
    std::copy_n(reinterpret_cast<const std::byte*>(planes.data()), 32, draft.bytes());
    draft.fields().temperatures[0] = {3, 26};
    draft.fields().temperatureCount = 1;
    draft.fields().isFirstAfterReturn = true;
    const Frame taken = std::move(draft).finish(32);
    {
        Recorder recorder(path("r"), streams);
        recorder.add(0, taken);
        EXPECT_THROW(recorder.add(0, taken.corrected()), Failure) << "it is made again when it is wanted";
        recorder.commit();
        EXPECT_THROW(recorder.add(0, taken), Failure) << "behind the end";
    }
    Recording recording(path("r"));
    const Frame raw = *recording.next(0);
    const Frame corrected = taken.corrected();
    const Frame later = recording.at(0, 0).corrected();
    EXPECT_EQ(later.depth()[1], corrected.depth()[1]);
    EXPECT_NE(later.depth()[1], raw.depth()[1]) << "by the temperature, which is recorded";

    const PointCloud cloud = raw.lens().pointsOf(raw, {.keepGrid = true, .leastConfidence = 9});
    EXPECT_EQ(cloud.withoutDepth(), 1U);
    EXPECT_EQ(cloud.belowConfidence(), 1U);
    const Point point = cloud.points()[2];
    EXPECT_NEAR(std::hypot(point.x, point.y, point.z), 2, 1e-6) << "8000 units of 0.25 mm along the ray";
    std::ostringstream ply;
    cloud.writePly(ply);
    EXPECT_THAT(ply.str(), AllOf(HasSubstr("comment camera Camera S-7, mode 4x2@60, frame 0\n"
                                           "comment depth along the ray\ncomment lens model from "),
                                 HasSubstr("comment not corrected: temperature: not applied")));
    const Frame played = *recording.camera().stream(Kind::Depth).next(10s);
    const Frame correctedLater = played.corrected();
    EXPECT_EQ(correctedLater.depth()[1], corrected.depth()[1]);
    EXPECT_TRUE(played.isFirstAfterReturn());
    const Lens other(*streams[0].lens, DepthAlong::Axis, "camera");
    EXPECT_THAT(messageOf<Failure>([&] { (void)other.pointsOf(raw); }),
                HasSubstr("its depth runs along the ray"));
}

TEST_F(RecordingTest, PlaysAsACameraAndHasNothingElseOfOne) {
    Recording recording(path("r"));
    const Camera camera = recording.camera("ov0570");
    EXPECT_EQ(camera.info(), recording.cameras().at(0));
    EXPECT_EQ(camera.modes(Kind::Depth), std::vector{streams[0].mode});
    EXPECT_EQ(camera.streamInfo(Kind::Depth, "4x2"), recording.streams()[0]);
    EXPECT_EQ(camera.corrections(), streams[0].corrections);
    EXPECT_EQ(camera.sources().failure, "no answer");
    EXPECT_EQ(camera.lensModels().extrinsics.values.at(0).t1, 25);
    EXPECT_THAT(reportOf(camera).json, AllOf(HasSubstr("\"along\": \"ray\""), HasSubstr("\"modeSizes\"")));
    Stream depth = camera.stream(Kind::Depth);
    for (const char* const expected : {"0:1000:3", "0:2000:0", "0:-3000:2"})
        EXPECT_EQ(text(0, *depth.next(10s)), expected);
    EXPECT_FALSE(depth.next(10s)) << "the end";

    const std::vector<std::pair<std::function<void()>, std::string>> refused{
        {[&] { (void)camera.parameters(); }, "is played from recording '"},
        {[&] { (void)camera.flash(); }, "cannot reach the controller: Camera S-7 is played"},
        {[&] { (void)camera.stream(Kind::Color); }, "has no color stream"},
        {[&] { (void)camera.mode(Kind::Depth, "9x9"); }, "it has DEFF1"},
        {[&] { (void)recording.camera("x"); }, "recorded: S-7"},
        {[&] { (void)recording.camera("S-7", {.speed = 0}); }, "at 0 times its speed"}};
    for (const auto& [ask, says] : refused)
        EXPECT_THAT(messageOf<Failure>(ask), HasSubstr(says));
    Stream waiting = camera.stream(Kind::Audio, {.started = false});
    camera.close();
    EXPECT_EQ(waiting.state(), Stream::State::Stopped);
    EXPECT_THAT(messageOf<Failure>([&] { (void)camera.stream(Kind::Depth); }), HasSubstr("is closed"));
}

TEST_F(RecordingTest, PlaysWhatWasOneMomentAsOneMomentAtItsPace) {
    std::vector<StreamInfo> pictures{streams[0], streams[0]};
    pictures[1].mode = {.kind = Kind::Color, .name = "CO", .width = 4, .height = 2, .rate = 20};
    pictures[0].mode.rate = 20;
    Recorder recorder(path("p"), pictures);
    for (int i = 0; i < 6; ++i) { // each has a clock of its own; it was away before the fourth
        const std::int64_t time = i * 50'000 + (i > 2 ? 1'000'000'000 : 0);
        recorder.add(0, {std::make_shared<StreamInfo>(pictures[0]), {}, 0, time});
        recorder.add(1, {std::make_shared<StreamInfo>(pictures[1]), {}, 0, time + 7'000'000'000});
    }
    recorder.commit();
    const Camera camera = Recording(path("p")).camera("", {.speed = 2});
    std::vector<Stream> both;
    both.push_back(camera.stream(Kind::Color, {.queue = 9, .started = false}));
    both.push_back(camera.stream(Kind::Depth, {.queue = 9, .started = false}));
    const auto began = std::chrono::steady_clock::now();
    FrameSets sets(std::move(both), {.patience = 10s});
    for (std::uint64_t i = 0; i < 6; ++i) {
        const std::optional<FrameSet> set = sets.next(10s);
        ASSERT_TRUE(set && set->complete()) << i;
        EXPECT_EQ(set->depth->number() + set->color->number(), 2 * i);
    }
    EXPECT_FALSE(sets.next(10s));
    const auto took = std::chrono::steady_clock::now() - began;
    EXPECT_GE(took, 95ms) << "four times 50 ms, at twice the speed";
    EXPECT_LT(took, 10s) << "without the time that it was away";
}

TEST(RecordedTimesTest, AreThoseOfOneClockThatNeverStandsStillForLong) {
    RecordedTimes times({10'000, 0, 10'000}, 1'000'000);
    // Sound begins before it is there; the third has a clock of its own. The second one begins its clock anew; then there
    // is a gap, after which the others are a frame time later.
    const std::int64_t rows[][3]{{0, 5'000'000, 0},          {1, 4'990'000, -10'000},
                                 {0, 5'020'000, 20'000},     {2, -1, 20'000},
                                 {2, 999'999, 1'020'000},    {0, 5'990'000, 990'000},
                                 {1, INT64_MIN, 1'020'000},  {1, INT64_MIN + 1, 1'020'001},
                                 {0, 90'000'000, 1'020'001}, {0, 90'100'000, 1'120'001},
                                 {2, 90'000'000, 1'020'001}, {2, 300'000'000, 1'120'001},
                                 {2, 600'000'000, 1'130'001}};
    for (const auto& [stream, micros, due] : rows)
        EXPECT_EQ(times.dueAt(static_cast<std::size_t>(stream), micros), due) << stream << " " << micros;
}

// Great frames until none fits any more, then small ones: what did not fit has taken nothing with it.
TEST(FullDisk, DISABLED_IsFilled) {
    const TestSupport::TemporaryDirectory directory;
    StreamInfo info;
    info.mode = {.kind = Kind::Depth, .name = "SMALL", .width = 2, .height = 1, .rate = 100};
    Recorder recorder(directory.path("r"), {info});
    std::vector<float> taken; // the reading of each frame
    const auto add = [&](std::size_t size, float warmth) {
        FrameDraft draft(std::make_shared<const StreamContext>(info), size, "make a frame");
        std::memset(draft.bytes(), 0, size);
        draft.fields().temperatures[0] = {0, warmth};
        draft.fields().temperatureCount = 1;
        try {
            recorder.add(0, std::move(draft).finish(size));
            taken.push_back(warmth);
            return true;
        } catch (const Failure&) {
            return false;
        }
    };
    float warmth = 20;
    while (add(1000, warmth))
        ++warmth;
    const std::size_t great = taken.size();
    while (add(1, warmth)) {
    }
    recorder.commit();
    Recording recording(directory.path("r"));
    std::size_t count = 0;
    for (; const auto frame = recording.next(0); ++count)
        EXPECT_EQ(frame->temperatures()[0].value, taken.at(count)) << count;
    EXPECT_EQ(count, recorder.frames());
    EXPECT_TRUE(great < count && count < taken.size()) << "the last ones make room for the end";
}

// A limit for the size of files is to a writer what a full disk is. Only the shells of POSIX systems set one.
TEST(FullDisk, KeepsTheWholeFramesAndTheirReadings) {
    if (std::filesystem::path::preferred_separator == '\\')
        GTEST_SKIP();
    const std::string program = std::filesystem::absolute(testing::internal::GetArgvs().at(0)).string();
    const std::string command = "trap '' XFSZ; ulimit -f 16; LLVM_PROFILE_FILE=/dev/null '" + program +
                                "' --gtest_also_run_disabled_tests --gtest_filter=FullDisk.DISABLED_IsFilled "
                                "> /dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

} // namespace
} // namespace Zentara::Host
