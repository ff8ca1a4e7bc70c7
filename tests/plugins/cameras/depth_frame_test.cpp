#include "plugins/cameras/nodes/depth_frame.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/raw_frame.h"
#include "plugins/simulated/scene.h"

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

TEST(DepthFrame, IsMadeOfWhatTheSensorSendsAndOfNothingElse) {
    const std::tuple<RawOutputMode, std::uint32_t, int, bool> rows[]{
        {RawOutputMode_PHASE, 20, 0, false},
        {RawOutputMode_PHASE_AND_CONFIDENCE, 10, 0, true},
        {RawOutputMode_TAPS, 20, 3, true}};
    const Plane sent = planesOf(40, 3);
    for (const auto& [mode, megahertz, depthTolerance, keepsConfidence] : rows) {
        SCOPED_TRACE(mode);
        std::vector<std::uint8_t> frame(rawFrameBytes(mode));
        std::vector<std::uint8_t> node(depthFrameBytes);
        encodeRawFrame({mode, megahertz, 40}, sent.data(), sent.data() + pixelCount, frame.data());
        ASSERT_TRUE(makeDepthFrame(frame.data(), frame.size(), node.data()));
        Plane back(3 * pixelCount); // depth, confidence, phase
        std::memcpy(back.data(), node.data(), depthFrameBytes);
        for (std::size_t i = 0; i < pixelCount; ++i) {
            const int confidence = sent[pixelCount + i];
            ASSERT_EQ(sent[i] == 0, back[i] == 0) << i;
            ASSERT_EQ(sent[i] == 0, back[2 * pixelCount + i] == 0) << i;
            ASSERT_NEAR(sent[i], back[i], confidence > 100 ? depthTolerance : 65535) << i;
            const int expected = keepsConfidence || sent[i] == 0 ? confidence : fullConfidence;
            ASSERT_NEAR(expected, back[pixelCount + i], 1) << i;
        }
        for (const std::size_t size : {std::size_t{0}, rawHeaderBytes - 1, rawHeaderBytes, frame.size() - 1})
            EXPECT_FALSE(makeDepthFrame(frame.data(), size, node.data())) << size;
        frame[4] = 3;
        EXPECT_FALSE(makeDepthFrame(frame.data(), frame.size(), node.data())) << "of an unknown mode";
    }
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
