#include "plugins/simulated/scene.h"

#include <algorithm>
#include <cmath>
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

    [[nodiscard]] std::uint16_t at(int x, int y) const {
        return depth[static_cast<std::size_t>(y) * frameWidth + static_cast<std::size_t>(x)];
    }

    /// The centre of everything that is clearly in front of the plane.
    [[nodiscard]] std::pair<double, double> ballCentre() const {
        double x = 0;
        double y = 0;
        double count = 0;
        for (std::size_t index = 0; index < pixelCount; ++index) {
            if (depth[index] == 0 || depth[index] >= Scene::planeNear - 30)
                continue;
            x += static_cast<double>(index % frameWidth);
            y += static_cast<double>(index / frameWidth);
            ++count;
        }
        return {x / count, y / count};
    }

    friend bool operator==(const Frame&, const Frame&) = default;
};

Frame frameOf(std::uint32_t number, std::uint32_t seed = 1) {
    Frame frame;
    Scene(seed).render(number, frame.depth.data(), frame.confidence.data());
    return frame;
}

TEST(Scene, IsTheSameForTheSameSeedAndFrameAndNoOther) {
    EXPECT_EQ(frameOf(5), frameOf(5));
    EXPECT_FALSE(frameOf(5) == frameOf(6));
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

TEST(Scene, TiltsThePlaneAwayTowardsTheTop) {
    const Frame frame = frameOf(0);
    const auto rowMean = [&](int y) {
        double sum = 0;
        int count = 0;
        for (int x = 0; x < 40; ++x) { // the ball never comes here
            sum += frame.at(x, y);
            count += frame.at(x, y) != 0;
        }
        return sum / count;
    };
    EXPECT_GT(rowMean(0), rowMean(120) + 400);
    EXPECT_GT(rowMean(120), rowMean(239) + 400);
}

TEST(Scene, MovesTheBallAndBringsItBack) {
    const auto [startX, startY] = frameOf(0).ballCentre();
    const auto [rightX, rightY] = frameOf(Scene::framesPerRound / 4).ballCentre();
    const auto [backX, backY] = frameOf(Scene::framesPerRound).ballCentre();
    EXPECT_GT(rightX, startX + 60);
    EXPECT_NEAR(backX, startX, 1.0);
    EXPECT_NEAR(backY, startY, 1.0);
}

TEST(Scene, NoiseIsThereAndGrowsWithDistance) {
    const auto deviation = [](int x, int y) {
        double sum = 0;
        double squares = 0;
        int count = 0;
        for (std::uint32_t number = 0; number < 400; ++number) {
            static std::vector<Frame> frames; // rendered once for all pixels
            if (frames.size() <= number)
                frames.push_back(frameOf(number));
            const double depth = frames[number].at(x, y);
            if (depth == 0)
                continue;
            sum += depth;
            squares += depth * depth;
            ++count;
        }
        return std::sqrt(squares / count - (sum / count) * (sum / count));
    };
    const double near = deviation(5, 235);
    const double far = deviation(5, 5);
    EXPECT_GT(near, 1.0);
    EXPECT_LT(near, 6.0);
    EXPECT_GT(far, 2 * near);
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

TEST(Tone, TakesLevelsOutsideTheRangeAsTheNearerEnd) {
    const auto peak = [](float level) {
        std::vector<std::int16_t> samples(960);
        Tone::fill(0, 480, level, samples.data());
        return *std::max_element(samples.begin(), samples.end());
    };
    EXPECT_EQ(peak(-1.0F), 0);
    EXPECT_EQ(peak(std::nanf("")), 0);
    EXPECT_EQ(peak(7.0F), peak(1.0F));
    EXPECT_NEAR(peak(0.5F), peak(1.0F) / 2, 2);
}

} // namespace
} // namespace Zentara::Simulated
