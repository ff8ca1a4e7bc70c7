#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <stb/stb_image.h>

#include "host/pictures/plot.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/color_recorder.h"

namespace Zentara::Tool {
namespace {

using testing::ElementsAre;

TEST(Plot, DividesARangeRoundly) {
    EXPECT_THAT(plotTicks(0, 10, 5), ElementsAre(0, 2, 4, 6, 8, 10));
    EXPECT_THAT(plotTicks(36.6, 36.9, 3),
                ElementsAre(testing::DoubleNear(36.6, 1e-9), testing::DoubleNear(36.7, 1e-9),
                            testing::DoubleNear(36.8, 1e-9), testing::DoubleNear(36.9, 1e-9)));
    const std::vector<std::pair<double, double>> ranges{{20, 20}, {-7.3, 4.1}, {0, 0}, {1e6, 1e6 + 0.5}};
    for (const auto& [low, high] : ranges) {
        const std::vector<double> ticks = plotTicks(low, high, 6);
        EXPECT_LE(ticks.front(), low + 1e-9);
        EXPECT_GE(ticks.back(), high - 1e-9);
        EXPECT_LT(ticks.size(), 20U) << low;
        EXPECT_GT(ticks.back(), ticks.front());
    }
}

TEST(Plot, DrawsEachLineInItsColour) {
    const std::string png =
        plotPng("x", {{"Title \xC3\xA9", {{"first", {{0, 0}, {10, 10}}}, {"second", {{0, 10}, {10, 0}}}}}});
    int width = 0;
    int height = 0;
    int channels = 0;
    auto* pixels = stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(png.data()),
                                         static_cast<int>(png.size()), &width, &height, &channels, 3);
    ASSERT_NE(pixels, nullptr);
    std::size_t red = 0;
    std::size_t blue = 0;
    for (int index = 0; index < width * height; ++index) {
        const stbi_uc* pixel = pixels + 3 * index;
        red += pixel[0] > 150 && pixel[1] < 100 && pixel[2] < 100;
        blue += pixel[0] < 100 && pixel[1] < 100 && pixel[2] > 150;
    }
    stbi_image_free(pixels);
    EXPECT_GT(red, 700U) << "a diagonal of two pixels' thickness";
    EXPECT_GT(blue, 700U);
}

TEST(Plot, RefusesWhatCannotBeDrawn) {
    EXPECT_THROW(static_cast<void>(plotPng("x", {{"t", {}}})), Failure);
    EXPECT_THROW(static_cast<void>(plotPng("x", {{"t", {{"empty", {}}}}})), Failure);
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_THROW(static_cast<void>(plotPng("x", {{"t", {{"far", {{0, infinite}}}}}})), Failure);
    EXPECT_FALSE(plotPng("x", {{"t", {{"one point", {{5, 5}}}}}}).empty());
}

// Published values of BT.601: black, white, and pure red.
TEST(Yuy2, TurnsIntoTheKnownColours) {
    const std::vector<std::uint8_t> packed{16, 128, 235, 128, 81, 90, 81, 240};
    EXPECT_THAT(rgbOfYuy2(packed.data(), 4), ElementsAre(0, 0, 0, 255, 255, 255, 255, 0, 0, 255, 0, 0));
}

} // namespace
} // namespace Zentara::Tool
