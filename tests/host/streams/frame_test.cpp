#include <cmath>
#include <cstring>
#include <functional>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/cyclic_error_correction.h>
#include <zentara/host/failure.h>
#include <zentara/host/frame.h>
#include <zentara/host/stream_info.h>

#include "host/streams/frame_draft.h"
#include "host/streams/frame_memory.h"
#include "support/failure.h"

namespace Zentara::Host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::messageOf;

StreamInfo infoOf(Kind kind, std::uint32_t width, std::uint32_t height) {
    StreamInfo info;
    info.camera.name = "LEFT";
    info.mode.kind = kind;
    info.mode.width = width;
    info.mode.height = height;
    info.correctionsSource = Source::Camera;
    return info;
}

/// \param warmth degrees that sensor 0 reads, if anything
template<typename Value>
Frame frameOf(const StreamInfo& info, const std::vector<Value>& values, std::optional<float> warmth = {}) {
    FrameDraft draft(std::make_shared<const StreamContext>(info), values.size() * sizeof(Value),
                     "make a frame");
    std::memcpy(draft.bytes(), values.data(), values.size() * sizeof(Value));
    draft.fields().temperatures[0] = {0, warmth.value_or(0)};
    draft.fields().temperatureCount = warmth ? 1 : 0;
    return std::move(draft).finish(values.size() * sizeof(Value));
}

TEST(Frame, CannotPassNoDepthForDepth) {
    StreamInfo info = infoOf(Kind::Depth, 3, 2);
    info.millimetresPerUnit = 0.5F;
    const Frame frame = frameOf<std::uint16_t>(info, {0, 2000, 65535, 4, 5, 6, 10, 11, 12, 13, 14, 15, 7});
    EXPECT_FALSE(frame.valid(0, 0));
    EXPECT_TRUE(frame.valid(1, 0));
    EXPECT_TRUE(std::isnan(frame.metres(0, 0)));
    EXPECT_FLOAT_EQ(frame.metres(1, 0), 1);
    EXPECT_FLOAT_EQ(frame.millimetres(2, 0), 32767.5F);
    EXPECT_EQ(frame.millimetres(0, 0), 0);
    EXPECT_TRUE(std::isnan(frame.metres()[0]));
    EXPECT_THAT(frame.confidence(), ElementsAre(10, 11, 12, 13, 14, 15));
    EXPECT_THAT(frame.phase(), testing::IsEmpty()) << "one value is no plane";
    for (const auto& ask : std::vector<std::function<void()>>{[&] { (void)frame.valid(3, 0); },
                                                              [&] { (void)frame.metres(0, 2); }})
        EXPECT_THAT(messageOf<Failure>(ask), HasSubstr("it has 3 x 2, counted from 0"));
    EXPECT_THAT(messageOf<Failure>([&] { (void)frame.rgb(); }), HasSubstr("it is of the kind depth"));
    const Frame cut = frameOf<std::uint16_t>(info, {1, 2, 3});
    EXPECT_THAT(messageOf<Failure>([&] { (void)cut.metres(); }),
                HasSubstr("has 6 bytes; its depth alone takes 12"));
}

TEST(Frame, MeasuresAlongTheAxisWhateverTheCameraMeasures) {
    StreamInfo info = infoOf(Kind::Depth, 3, 1);
    info.depthAlong = DepthAlong::Ray;
    const std::vector<std::uint16_t> values{1414, 1000, 0};
    EXPECT_THAT(messageOf<Failure>([&] { (void)frameOf(info, values).metres(); }), HasSubstr("LEFT"));
    info.lens = CameraIntrinsics{.width = 3, .height = 1, .fx = 1, .fy = 1, .cx = 1, .cy = 0};
    const Frame frame = frameOf(info, values);
    EXPECT_NEAR(frame.metres(0, 0), 1, 1e-3) << "at 45 degrees";
    EXPECT_NEAR(frame.metres()[0], 1, 1e-3);
    EXPECT_NEAR(frame.millimetres(1, 0), 1000, 1e-3);
    EXPECT_TRUE(std::isnan(frame.metres()[2]));
    EXPECT_EQ(frame.millimetres()[1], 1000);
    EXPECT_EQ(frame.millimetres()[2], 0);
    info.millimetresPerUnit = 0.5F;
    const PointCloud cloud = frame.lens().pointsOf(frameOf(info, values));
    EXPECT_NEAR(cloud.points()[0].z, 0.5, 1e-3) << "in the frame's own unit";
    const Lens other(*info.lens, DepthAlong::Axis, "other");
    EXPECT_THAT(messageOf<Failure>([&] { (void)other.pointsOf(frame); }), HasSubstr("runs along the ray"));
}

TEST(Frame, IsCorrectedByWhatIsKnownAndNamesTheRest) {
    StreamInfo info = infoOf(Kind::Depth, 3, 1);
    info.millimetresPerPhaseStep = 0.25F;
    info.corrections.phaseDelay = 40; // 10 mm
    ModeCorrections& mode = info.corrections.modes[0];
    mode.temperature = ModeCorrections::Temperature::Linear;
    mode.temperatureParameters = {0.5F};
    mode.calibratedAt.values = {{0, 30}};
    mode.cyclicAlgorithm = CorrectionAlgorithm_HARMONIC;
    mode.cyclicParameters = {1, 0, 4, 0, 0}; // 1 mm, and 4 times the sine of one turn in 16,384 mm
    const std::vector<std::uint16_t> depth{0, 4096, 5};
    const auto correctedDepth = [](const Frame& frame) {
        const Frame corrected = frame.corrected();
        return std::vector<std::uint16_t>(corrected.depth().begin(), corrected.depth().end());
    };
    const Frame cold = frameOf(info, depth);
    EXPECT_THAT(cold.uncorrected(), ElementsAre("temperature: not applied", "cyclic error: not applied",
                                                "phase delay: not applied"));
    EXPECT_THAT(cold.corrected().uncorrected(), ElementsAre("temperature: there is no reading of sensor 0"));
    EXPECT_THAT(correctedDepth(cold), ElementsAre(0, 4096 + 5 - 10, 0)) << "5 - 10 mm is no depth";

    const Frame warm = frameOf(info, depth, 50.0F);
    EXPECT_THAT(correctedDepth(warm), ElementsAre(0, 4096 + 5 - 10 + 10, 6));
    EXPECT_THAT(warm.corrected().uncorrected(), testing::IsEmpty());
    EXPECT_THAT(correctedDepth(warm.corrected()), ElementsAre(0, 4101, 6)) << "once is enough";

    StreamInfo far = info;
    far.mode.cameraMode = 1;
    far.corrections.phaseDelay2 = -8;
    EXPECT_THAT(correctedDepth(frameOf(far, depth)), ElementsAre(0, 4098, 7)) << "its other mode";

    mode.temperature = ModeCorrections::Temperature::Polynomial;
    mode.temperatureParameters = {-1, 0.5F, 0.01F}; // -1 + 10 + 4 at 20 degrees
    mode.cyclicAlgorithm = 3;
    info.millimetresPerPhaseStep = 0;
    EXPECT_THAT(correctedDepth(frameOf(info, depth, 50.0F)), ElementsAre(0, 4109, 18));
    EXPECT_THAT(frameOf(info, depth, 50.0F).corrected().uncorrected(),
                ElementsAre("cyclic error: algorithm 3 is not known",
                            HasSubstr("phase delay: how many millimetres")));

    mode.cyclicAlgorithm = CorrectionAlgorithm_HARMONIC;
    info.millimetresPerPhaseStep = 0;
    const Frame withPhase =
        frameOf<std::uint16_t>(info, {0, 4096, 5, 0, 9, 9, 0, 49152, 0}, 30.0F); // three quarters of a turn
    EXPECT_THAT(correctedDepth(withPhase), ElementsAre(0, 4096 - 3 - 1, 5)) << "the frame's own phase";

    info.correctionsSource = Source::None;
    EXPECT_THAT(frameOf(info, depth).corrected().uncorrected(), testing::SizeIs(3));
}

TEST(Frame, ShowsColourAndSoundOnlyAsTheyAre) {
    StreamInfo info = infoOf(Kind::Color, 2, 1);
    const std::vector<std::uint8_t> packed{126, 128, 81, 240};
    EXPECT_EQ(frameOf(info, packed).rgb().size(), 6U);
    EXPECT_THAT(frameOf<std::uint8_t>(info, {235, 128, 16, 128}).rgb(), ElementsAre(255, 255, 255, 0, 0, 0));
    const Frame cut = frameOf<std::uint8_t>(info, {1, 2, 3});
    EXPECT_THAT(messageOf<Failure>([&] { (void)cut.rgb(); }), HasSubstr("3 bytes; its pixels take 4"));
    info.mode.compression = 1;
    info.mode.name = "COFF2FR30PLF0COMP1";
    EXPECT_THAT(messageOf<Failure>([&] { (void)frameOf(info, packed).rgb(); }),
                HasSubstr("compressed (mode COFF2FR30PLF0COMP1), which is not decoded"));

    info.mode.kind = Kind::Audio;
    info.mode.channels = 2;
    info.mode.bitsPerSample = 16;
    const Frame sound = frameOf<std::int16_t>(info, {1, -2, 3, -4, 5});
    EXPECT_THAT(sound.samples(), ElementsAre(1, -2, 3, -4));
    info.mode.bitsPerSample = 24;
    const Frame fine = frameOf(info, packed);
    EXPECT_THAT(messageOf<Failure>([&] { (void)fine.samples(); }), HasSubstr("24 bits, not 16"));
}

TEST(Frame, SharesItsMemoryAndKeepsToTheLimit) {
    const auto info = std::make_shared<const StreamInfo>(infoOf(Kind::Color, 2, 1));
    const std::vector<std::byte> bytes(100'000, std::byte{7});
    // An ended stream's thread gives its memory back, which may come after the stream's end.
    for (int tries = 0; frameMemoryTaken() != 0 && tries < 1000; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const std::size_t before = frameMemoryTaken(), limit = frameMemoryLimit();
    {
        const Frame frame(info, bytes, 3, 5);
        const std::size_t one = frameMemoryTaken() - before;
        EXPECT_GE(one, bytes.size());
        Frame copy = frame;
        Frame moved = std::move(copy);
        copy = moved;
        EXPECT_EQ(moved.bytes().data(), frame.bytes().data());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(frame.bytes().data()) % 64, 0U);
        EXPECT_EQ(frameMemoryTaken() - before, one);
        setFrameMemoryLimit(before + 2 * one - 1);
        EXPECT_THAT(messageOf<Failure>([&] { (void)Frame(info, bytes); }),
                    HasSubstr("the limit of " + std::to_string(before + 2 * one - 1)));
        FrameMemory::instance().streamOpens();
        { const Frame kept(info, std::span(bytes).first(one / 4)); }
        setFrameMemoryLimit(before + 2 * one + 5000);
        EXPECT_NO_THROW(Frame(info, bytes)) << "what is kept of another size makes room";
        FrameMemory::instance().streamEnds();
        setFrameMemoryLimit(limit);
    }
    EXPECT_EQ(frameMemoryTaken(), before);
}

} // namespace
} // namespace Zentara::Host
