#include "plugins/simulated/scene.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "plugins/cameras/nodes/depth_frame.h"
#include "plugins/descriptions/wire.h"
#include "plugins/simulated/raw_frame.h"
#include "plugins/simulated/tone.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

using Plane = std::vector<std::uint16_t>;

/// Depth and confidence, one behind the other.
Plane planesOf(std::uint32_t number, std::uint32_t seed = 1) {
    Plane planes(2 * pixelCount);
    Scene(seed).render(number, planes.data(), planes.data() + pixelCount);
    return planes;
}

TEST(Scene, IsTheSameForTheSameSeedAndFrameAndNoOther) {
    EXPECT_TRUE(planesOf(5) == planesOf(5));
    EXPECT_FALSE(planesOf(5) == planesOf(6)) << "the ball moves";
    EXPECT_FALSE(planesOf(5, 1) == planesOf(5, 2));
}

TEST(Tone, HasTheTwoPitchesAndJoinsItsBlocks) {
    std::vector<std::int16_t> second(std::size_t{audioSampleRate} * audioChannels);
    Tone::fill(0, audioSampleRate, 1.0F, second.data());
    const auto risingZeros = [&](std::size_t channel) {
        int count = 0;
        for (std::size_t index = channel + 2; index < second.size(); index += 2)
            count += second[index - 2] < 0 && second[index] >= 0;
        return count;
    };
    EXPECT_NEAR(risingZeros(0), Tone::leftHertz, 1);
    EXPECT_NEAR(risingZeros(1), Tone::rightHertz, 1);
    EXPECT_GT(*std::max_element(second.begin(), second.end()), 32700);

    std::vector<std::int16_t> late(200);
    Tone::fill(1000, 100, 1.0F, late.data());
    EXPECT_TRUE(std::equal(late.begin(), late.end(), second.begin() + 2000));
}

struct Mode {
    const char* name;
    RawOutputMode mode;
    std::uint32_t megahertz;
    int depthTolerance; // millimetres, where light is plenty
    bool keepsConfidence;
};

/// A frame of the scene, sent raw and made into a node's frame.
class RawFrame : public testing::TestWithParam<Mode> {
protected:
    RawFrame() : frame(rawFrameBytes(GetParam().mode)) {
        Scene(3).render(40, depth.data(), confidence.data());
        encodeRawFrame({GetParam().mode, GetParam().megahertz, 40}, depth.data(), confidence.data(),
                       frame.data());
    }

    Plane depth = Plane(pixelCount);
    Plane confidence = Plane(pixelCount);
    std::vector<std::uint8_t> frame;
    std::vector<std::uint8_t> node = std::vector<std::uint8_t>(depthFrameBytes);
};

INSTANTIATE_TEST_SUITE_P(Modes, RawFrame,
                         testing::Values(Mode{"Phase", RawOutputMode_PHASE, 20, 0, false},
                                         Mode{"PhaseAndConfidence", RawOutputMode_PHASE_AND_CONFIDENCE, 10, 0,
                                              true},
                                         Mode{"Taps", RawOutputMode_TAPS, 20, 3, true}),
                         [](const auto& mode) { return mode.param.name; });

TEST_P(RawFrame, GivesBackDepthAndConfidence) {
    ASSERT_TRUE(makeDepthFrame(frame.data(), frame.size(), node.data()));
    Plane back(3 * pixelCount); // depth, confidence, phase
    std::memcpy(back.data(), node.data(), depthFrameBytes);
    int worst = 0;
    for (std::size_t i = 0; i < pixelCount; ++i) {
        ASSERT_EQ(depth[i] == 0, back[i] == 0) << i;
        ASSERT_EQ(depth[i] == 0, back[2 * pixelCount + i] == 0) << i;
        if (confidence[i] > 100)
            worst = std::max(worst, std::abs(depth[i] - back[i]));
        ASSERT_NEAR(GetParam().keepsConfidence || depth[i] == 0 ? confidence[i] : fullConfidence,
                    back[pixelCount + i], 1)
            << i;
    }
    EXPECT_LE(worst, GetParam().depthTolerance);
}

TEST_P(RawFrame, IsRefusedWhenItIsCutOrOfAnUnknownMode) {
    for (const std::size_t size : {std::size_t{0}, rawHeaderBytes - 1, rawHeaderBytes, frame.size() - 1})
        EXPECT_FALSE(makeDepthFrame(frame.data(), size, node.data())) << size;
    frame[4] = 3;
    EXPECT_FALSE(makeDepthFrame(frame.data(), frame.size(), node.data()));
}

TEST(DepthFrame, TakesDepthAsItIs) {
    std::vector<std::uint8_t> delivered(frameBytes);
    const Plane planes = planesOf(0);
    std::memcpy(delivered.data(), planes.data(), frameBytes);
    std::vector<std::uint8_t> frame(depthFrameBytes, 0xAA);
    ASSERT_TRUE(makeDepthFrame(delivered.data(), frameBytes, frame.data()));
    EXPECT_TRUE(std::equal(delivered.begin(), delivered.end(), frame.begin()));
    EXPECT_TRUE(
        std::all_of(frame.begin() + depthFramePhaseOffset, frame.end(), [](int b) { return b == 0; }));

    ASSERT_TRUE(makeDepthFrame(delivered.data(), confidenceOffset, frame.data()));
    EXPECT_TRUE(std::equal(delivered.begin(), delivered.begin() + confidenceOffset, frame.begin()));
    const bool centreSeen = planes[pixelCount / 2] != 0;
    EXPECT_EQ(frame[confidenceOffset + pixelCount] | frame[confidenceOffset + pixelCount + 1] << 8,
              centreSeen ? fullConfidence : 0);
}

} // namespace
} // namespace Zentara::Simulated
