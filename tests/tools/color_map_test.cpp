#include "host/pictures/color_map.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace Zentara::Tool {
namespace {

TEST(ColorMap, ShowsNearRedFarBlueAndNothingBlack) {
    const DepthRange range{600, 2600};
    EXPECT_EQ(depthColor(0, range), (Rgb{0, 0, 0}));
    const Rgb near = depthColor(600, range);
    const Rgb far = depthColor(2600, range);
    EXPECT_GT(near[0], 2 * near[1]);
    EXPECT_GT(near[0], 4 * near[2]);
    EXPECT_GT(far[2], 2 * far[0]);
    EXPECT_GT(far[2], 2 * far[1]);
    for (int depth = 1; depth < 65536; ++depth) {
        const Rgb color = depthColor(static_cast<std::uint16_t>(depth), range);
        ASSERT_GT(*std::max_element(color.begin(), color.end()), 100) << depth << " looks like no depth";
    }
    EXPECT_EQ(depthColor(100, range), near) << "beyond the range is as its end";
    EXPECT_EQ(depthColor(9000, range), far);
}

TEST(ColorMap, FindsTheRangeWithoutZerosAndWildPixels) {
    std::vector<std::uint16_t> depth(1000, 0);
    EXPECT_EQ(depthRange(depth.data(), depth.size(), 0.0).farthest, 0);
    for (std::size_t index = 0; index < 200; ++index)
        depth[5 * index] = static_cast<std::uint16_t>(1000 + index);
    depth[1] = 3;
    depth[2] = 60000;
    const DepthRange whole = depthRange(depth.data(), depth.size(), 0.0);
    EXPECT_EQ(whole.nearest, 3);
    EXPECT_EQ(whole.farthest, 60000);
    const DepthRange trimmed = depthRange(depth.data(), depth.size(), 0.02);
    EXPECT_EQ(trimmed.nearest, 1003);
    EXPECT_EQ(trimmed.farthest, 1196);
}

} // namespace
} // namespace Zentara::Tool
