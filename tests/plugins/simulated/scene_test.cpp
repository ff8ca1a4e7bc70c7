#include "plugins/simulated/scene.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/tone.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

struct Frame {
    std::vector<std::uint16_t> depth = std::vector<std::uint16_t>(pixelCount);
    std::vector<std::uint16_t> confidence = std::vector<std::uint16_t>(pixelCount);

    friend bool operator==(const Frame&, const Frame&) = default;
};

Frame frameOf(std::uint32_t number, std::uint32_t seed = 1) {
    Frame frame;
    Scene(seed).render(number, frame.depth.data(), frame.confidence.data());
    return frame;
}

TEST(Scene, IsTheSameForTheSameSeedAndFrameAndNoOther) {
    EXPECT_EQ(frameOf(5), frameOf(5));
    EXPECT_FALSE(frameOf(5) == frameOf(6)) << "the ball moves";
    EXPECT_FALSE(frameOf(5, 1) == frameOf(5, 2));
}

TEST(Scene, StaysWithinItsDepthsAndLosesFewPixels) {
    for (const std::uint32_t number : {0U, 45U, 90U, 0xFFFFFFFFU}) {
        const Frame frame = frameOf(number);
        std::size_t blind = 0;
        for (std::size_t index = 0; index < pixelCount; ++index) {
            const std::uint16_t depth = frame.depth[index];
            EXPECT_EQ(depth == 0, frame.confidence[index] == 0) << "pixel " << index;
            EXPECT_LE(frame.confidence[index], fullConfidence);
            blind += depth == 0;
            if (depth != 0) {
                ASSERT_GE(depth, Scene::ballNearest - 20) << "pixel " << index;
                ASSERT_LE(depth, Scene::planeFar + 100) << "pixel " << index;
            }
        }
        EXPECT_GT(blind, 0U);
        EXPECT_LT(blind, pixelCount / 20);
    }
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

} // namespace
} // namespace Zentara::Simulated
