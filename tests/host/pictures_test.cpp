#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <stb/stb_image.h>

#include <zentara/host/host.h>
#include <zentara/utils/files.h>

#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

constexpr Color black{0, 0, 0};

std::size_t count(const Picture& picture, const std::function<bool(Color)>& wanted) {
    std::size_t found = 0;
    for (std::uint32_t y = 0; y < picture.height(); ++y)
        for (std::uint32_t x = 0; x < picture.width(); ++x)
            found += wanted(picture.at(x, y));
    return found;
}

TEST(Picture, IsWrittenAsPng) {
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.path("p.png");
    Picture picture(3, 2, {9, 8, 7});
    picture.set(2, 1, {1, 2, 3});
    picture.writePng(path);
    int width = 0;
    int height = 0;
    int channels = 0;
    const std::string bytes = Utils::readFile(path);
    auto* pixels = stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()),
                                         static_cast<int>(bytes.size()), &width, &height, &channels, 3);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(std::vector<int>(pixels, pixels + 18),
              (std::vector<int>{9, 8, 7, 9, 8, 7, 9, 8, 7, 9, 8, 7, 9, 8, 7, 1, 2, 3}));
    EXPECT_TRUE(width == 3 && height == 2);
    stbi_image_free(pixels);
    EXPECT_THROW(picture.writePng(path, {.ifThere = IfThere::Refuse}), Failure);
    EXPECT_THROW(static_cast<void>(Picture().png()), Failure);
    EXPECT_THROW(Picture(1U << 16, 1U << 16), Failure);
    EXPECT_THROW(static_cast<void>(Picture::fromRgb(2, 2, std::vector<std::uint8_t>(11))), Failure);
}

TEST(ColorMap, ShowsNearRedFarBlueAndNothingBlack) {
    const ColorMap map({600, 2600}, "mm", "no depth");
    EXPECT_EQ(map(std::nan("")), black);
    const Color near = map(600);
    const Color far = map(2600);
    EXPECT_TRUE(near.red > 2 * near.green && near.red > 4 * near.blue);
    EXPECT_TRUE(far.blue > 2 * far.red && far.blue > 2 * far.green);
    for (int depth = 0; depth < 65536; ++depth) {
        const Color color = map(depth);
        ASSERT_GT(std::max({color.red, color.green, color.blue}), 100) << depth << " looks like no depth";
    }
    EXPECT_EQ(map(100), near) << "beyond the range is as its end";
    EXPECT_EQ(map(9000), far);
    const std::vector<std::uint16_t> depth{0, 600, 2600, 9000};
    const Picture picture = map.paint(depth, 2, 2);
    EXPECT_TRUE(picture.at(0, 0) == black && picture.at(1, 0) == near && picture.at(1, 1) == far);
    EXPECT_THROW(static_cast<void>(map.paint(depth, 3, 2)), Failure);
    EXPECT_THROW(ColorMap({1, std::nan("")}, "", ""), Failure);
    EXPECT_THROW(ColorMap({2, 1}, "", ""), Failure);
    const Picture explained = map.explain(picture, "Title \xC3\xA9");
    EXPECT_GT(count(explained, [&](Color color) { return color == far; }), 24U) << "the scale's end";
    EXPECT_GT(count(explained, [](Color color) { return color == black; }), 200U) << "letters";
}

TEST(ColorMap, FindsTheRangeWithoutZerosAndWildPixels) {
    std::vector<std::uint16_t> depth(1000, 0);
    EXPECT_EQ(ColorMap::rangeOf(depth), ValueRange{});
    for (std::size_t index = 0; index < 200; ++index)
        depth[5 * index] = static_cast<std::uint16_t>(1000 + index);
    depth[1] = 3;
    depth[2] = 60000;
    EXPECT_EQ(ColorMap::rangeOf(depth, 0), (ValueRange{3, 60000}));
    EXPECT_EQ(ColorMap::rangeOf(depth, 0.02), (ValueRange{1003, 1196}));
    EXPECT_EQ(ColorMap::rangeOf(depth, 7), ColorMap::rangeOf(depth, 0.5)) << "and nothing beyond the picture";
}

// Two spots, the near one to the left: from far right it is seen left of the other still, from far left right of it.
TEST(CloudView, TurnsAboutTheMiddleAndHidesWhatIsBehind) {
    const Lens lens({40, 2, 20, 20, 20, 1}, DepthAlong::Axis, "camera");
    std::vector<std::uint16_t> depth(80);
    depth[18] = depth[58] = 1000;
    depth[22] = depth[62] = 3000;
    const PointCloud cloud = lens.pointsOf(depth, 40, 2);
    const auto middleOf = [&](double right, bool near) {
        const Picture picture = CloudView{.right = right, .up = 0}.draw(cloud, "two spots");
        double sum = 0;
        double found = 0;
        for (std::uint32_t y = 40; y < 500; ++y)
            for (std::uint32_t x = 12; x < 640; ++x) {
                const Color color = picture.at(x, y);
                const bool isNear = color.red > 2 * color.blue;
                if (std::max({color.red, color.green, color.blue}) < 100 || isNear != near)
                    continue;
                sum += x;
                ++found;
            }
        return sum / found;
    };
    EXPECT_LT(middleOf(60, true), middleOf(60, false));
    EXPECT_GT(middleOf(-60, true), middleOf(-60, false));
    EXPECT_THROW(static_cast<void>(CloudView{}.draw(PointCloud(), "none")), Failure);
    for (const CloudView& none :
         {CloudView{.width = 0}, CloudView{.height = 0}, CloudView{.width = 1U << 20},
          CloudView{.height = 1U << 20}, CloudView{.right = NAN}, CloudView{.up = INFINITY}})
        EXPECT_THROW(static_cast<void>(none.draw(cloud, "no picture")), Failure);
}

TEST(Plot, DrawsEachLineInItsColour) {
    const double gap = std::nan("");
    const Picture picture = plot(
        "x", {{"Title", "V", {{"first", {{0, 0}, {10, 10}}}, {"second", {{0, 10}, {5, gap}, {10, 0}}}}}});
    EXPECT_GT(count(picture, [](Color c) { return c.red > 150 && c.green < 100 && c.blue < 100; }), 700U)
        << "a diagonal of two pixels' thickness";
    const std::size_t blue =
        count(picture, [](Color c) { return c.red < 100 && c.green < 100 && c.blue > 150; });
    EXPECT_TRUE(blue > 50 && blue < 700) << "its name alone";
}

TEST(Plot, CopesWithAnyRangeAndRefusesNone) {
    const double infinite = std::numeric_limits<double>::infinity();
    const std::vector<std::pair<double, double>> ranges{
        {20, 20}, {-7.3, 4.1}, {0, 0}, {1e6, 1e6 + 0.5}, {-1e300, 1}};
    for (const auto& [low, high] : ranges)
        EXPECT_EQ(plot("x", {{"t", "", {{"line", {{0, low}, {1, high}}}}}}).width(), 800U) << low;
    EXPECT_THROW(static_cast<void>(plot("x", {})), Failure);
    EXPECT_THROW(static_cast<void>(plot("x", {{"t", "", {{"empty", {}}}}})), Failure);
    EXPECT_THROW(static_cast<void>(plot("x", {{"t", "", {{"far", {{0, infinite}}}}}})), Failure);
}

} // namespace
} // namespace Zentara::Host
