#include "plugins/simulated/raw_frame.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "plugins/simulated/frame_layout.h"
#include "plugins/simulated/nodes/depth_frame.h"
#include "plugins/simulated/scene.h"

namespace Zentara::Simulated {
namespace {

using Plane = std::vector<std::uint16_t>;

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
};

INSTANTIATE_TEST_SUITE_P(Modes, RawFrame,
                         testing::Values(Mode{"Phase", RawOutputMode_PHASE, 20, 0, false},
                                         Mode{"PhaseAndConfidence", RawOutputMode_PHASE_AND_CONFIDENCE, 10, 0,
                                              true},
                                         Mode{"Taps", RawOutputMode_TAPS, 20, 3, true}),
                         [](const auto& mode) { return mode.param.name; });

TEST_P(RawFrame, GivesBackDepthAndConfidence) {
    RawHeader header;
    ASSERT_TRUE(readRawHeader(frame.data(), frame.size(), header));
    EXPECT_EQ(header.mode, GetParam().mode);
    EXPECT_EQ(header.megahertz, GetParam().megahertz);
    EXPECT_EQ(header.number, 40U);

    Plane depthBack(pixelCount);
    Plane confidenceBack(pixelCount);
    Plane phase(pixelCount);
    decodeRawFrame(header, frame.data(), depthBack.data(), confidenceBack.data(), phase.data());
    int worst = 0;
    for (std::size_t i = 0; i < pixelCount; ++i) {
        ASSERT_EQ(depth[i] == 0, depthBack[i] == 0) << i;
        ASSERT_EQ(depth[i] == 0, phase[i] == 0) << i;
        if (confidence[i] > 100)
            worst = std::max(worst, std::abs(depth[i] - depthBack[i]));
        if (GetParam().keepsConfidence) {
            ASSERT_NEAR(confidence[i], confidenceBack[i], 1) << i;
        }
    }
    EXPECT_LE(worst, GetParam().depthTolerance);
}

TEST_P(RawFrame, IsRefusedWhenItIsCutOrOfAnUnknownMode) {
    RawHeader header;
    for (const std::size_t size : {std::size_t{0}, rawHeaderBytes - 1, rawHeaderBytes, frame.size() - 1})
        EXPECT_FALSE(readRawHeader(frame.data(), size, header)) << size;
    std::vector<std::uint8_t> node(depthFrameBytes);
    EXPECT_FALSE(makeDepthFrame(frame.data(), frame.size() - 1, node.data()));
    frame[4] = 3;
    EXPECT_FALSE(readRawHeader(frame.data(), frame.size(), header));
}

TEST(DepthFrame, TakesDepthAsItIs) {
    std::vector<std::uint8_t> delivered(frameBytes);
    Plane planes(2 * pixelCount);
    Scene(1).render(0, planes.data(), planes.data() + pixelCount);
    std::copy_n(reinterpret_cast<const std::uint8_t*>(planes.data()), frameBytes, delivered.begin());
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
