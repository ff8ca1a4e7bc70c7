#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <sstream>

#include <gmock/gmock.h>

#include <zentara/host/host.h>

#include "support/failure.h"

namespace Zentara::Host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::messageOf;

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

/// A lens like that of a small time-of-flight camera, for 8 x 6 pixels.
CameraIntrinsics smallModel() { return {.width = 8, .height = 6, .fx = 6, .fy = 5, .cx = 3.5F, .cy = 2.5F}; }

Lens smallLens(DepthAlong along = DepthAlong::Axis) { return {smallModel(), along, "SIM0570 in QVGA"}; }

std::vector<std::uint16_t> wall(std::uint16_t millimetres) {
    return std::vector<std::uint16_t>(std::size_t{8} * 6, millimetres);
}

CameraIntrinsics changed(const std::function<void(CameraIntrinsics&)>& change) {
    CameraIntrinsics model = smallModel();
    change(model);
    return model;
}

TEST(Lens, TakesOutTheDistortionThatItPutsIn) {
    const CameraIntrinsics models[] = {
        {320, 240, 224.5F, 224.25F, 160.5F, 118.75F, -0.28F, 0.09F, -0.01F, 0.001F, -0.002F},
        {320, 240, 224.5F, 224.25F, 160.5F, 118.75F, 0.35F, 0.2F, 0.1F, 0, 0},
        {320, 240, -224.5F, 180, 300, -20, -0.02F, 0, 0, 0.003F, 0.003F}};
    for (const CameraIntrinsics& model : models) {
        const Lens lens(model, DepthAlong::Axis, "camera");
        for (float y = 0; y < 240; y += 17) {
            for (float x = 0; x < 320; x += 17) {
                const auto ray = lens.ray({x, y});
                ASSERT_TRUE(ray) << x << ' ' << y;
                const auto back = lens.project({2 * ray->x, 2 * ray->y, 2});
                ASSERT_TRUE(back);
                EXPECT_NEAR(back->x, x, 0.011) << y;
                EXPECT_NEAR(back->y, y, 0.011) << x;
            }
        }
    }
}

// Computed by hand from the formula in the header.
TEST(Lens, ProjectsByTheFormulaAndHandsOutOpenCVsOrder) {
    const CameraIntrinsics model{640, 480, 500, 400, 320, 240, 0.5F, 0.25F, 0.125F, 0.0625F, 0.03125F};
    const Lens lens(model, DepthAlong::Axis, "camera");
    // x = 0.5, y = 1, r2 = 1.25, radial = 1 + 0.625 + 0.390625 + 0.244140625
    const auto place = lens.project({1, 2, 2});
    ASSERT_TRUE(place);
    EXPECT_NEAR(place->x, 500 * (0.5 * 2.259765625 + 2 * 0.0625 * 0.5 + 0.03125 * 1.75) + 320, 1e-3);
    EXPECT_NEAR(place->y, 400 * (2.259765625 + 0.0625 * 3.25 + 2 * 0.03125 * 0.5) + 240, 1e-3);
    EXPECT_FALSE(lens.project({1, 1, 0}));
    EXPECT_FALSE(lens.project({1, 1, noNumber}));
    EXPECT_THAT(lens.cameraMatrix(), ElementsAre(500, 0, 320, 0, 400, 240, 0, 0, 1));
    EXPECT_THAT(lens.distortionCoefficients(), ElementsAre(0.5, 0.25, 0.0625, 0.03125, 0.125));
}

TEST(PointCloud, PutsAWallWhereItStands) {
    std::vector<std::uint16_t> depth = wall(2000);
    depth[9] = 0;
    const PointCloud cloud = smallLens().pointsOf(depth, 8, 6, {.keepGrid = true});
    ASSERT_EQ(cloud.points().size(), 48U);
    EXPECT_EQ(cloud.width(), 8U);
    EXPECT_EQ(cloud.withoutDepth(), 1U);
    EXPECT_TRUE(std::isnan(cloud.points()[9].x) && std::isnan(cloud.points()[9].y) &&
                std::isnan(cloud.points()[9].z));
    EXPECT_FLOAT_EQ(cloud.points()[0].x, -3.5F / 6 * 2);
    EXPECT_FLOAT_EQ(cloud.points()[0].y, -2.5F / 5 * 2);
    EXPECT_FLOAT_EQ(cloud.points()[47].x, 3.5F / 6 * 2);
    const PointCloud dense = smallLens().pointsOf(depth, 8, 6);
    EXPECT_EQ(dense.points().size(), 47U);
    for (const Point& point : dense.points())
        EXPECT_FLOAT_EQ(point.z, 2);
    const PointCloud sphere = smallLens(DepthAlong::Ray).pointsOf(depth, 8, 6);
    for (const Point& point : sphere.points())
        EXPECT_NEAR(std::hypot(point.x, point.y, point.z), 2, 1e-6);
}

TEST(PointCloud, LeavesOutWhatIsNotSureOrHasNoRay) {
    std::vector<std::uint16_t> depth = wall(65535);
    depth[0] = 0;
    std::vector<std::uint16_t> confidence = wall(200);
    confidence[0] = confidence[1] = 199;
    const PointCloud sure = smallLens().pointsOf(depth, 8, 6, {.leastConfidence = 200}, confidence);
    EXPECT_EQ(sure.points().size(), 46U);
    EXPECT_EQ(sure.withoutDepth(), 1U);
    EXPECT_EQ(sure.belowConfidence(), 1U);
    EXPECT_FLOAT_EQ(sure.points()[0].z, 65.535F);

    // With k1 = -0.9 the picture of the plane folds back at a radius of 0.61, seen at 0.41: each corner and its neighbour above or
    // below see nothing.
    const auto folding = changed([](CameraIntrinsics& model) {
        model.k1 = -0.9F;
        model.fx = model.fy = 9;
    });
    const PointCloud seen =
        Lens(folding, DepthAlong::Axis, "c").pointsOf(wall(1000), 8, 6, {.keepGrid = true});
    EXPECT_EQ(seen.withoutRay(), 8U);
    EXPECT_TRUE(std::isnan(seen.points()[7].z));
    EXPECT_FALSE(std::isnan(seen.points()[1].z));
}

TEST(PointCloud, IsNotMadeOfNonsense) {
    const float infinite = std::numeric_limits<float>::infinity();
    for (const auto& model : {changed([](CameraIntrinsics& m) { m.fx = 0; }),
                              changed([](CameraIntrinsics& m) { m.fy = noNumber; }),
                              changed([&](CameraIntrinsics& m) { m.p2 = infinite; }),
                              changed([](CameraIntrinsics& m) { m.height = 0; })})
        EXPECT_THAT(messageOf<Failure>([&] { Lens(model, DepthAlong::Axis, "SIM0570 in QVGA"); }),
                    AllOf(HasSubstr("cannot use the lens model of SIM0570 in QVGA"), HasSubstr("fx ")));
    EXPECT_THAT(messageOf<Failure>([] { (void)smallLens().pointsOf(wall(1), 6, 8); }),
                AllOf(HasSubstr("SIM0570 in QVGA"), HasSubstr("6 x 8 pixels"), HasSubstr("8 x 6")));
    EXPECT_THAT(messageOf<Failure>([] { (void)smallLens().pointsOf(std::vector<std::uint16_t>(47), 8, 6); }),
                HasSubstr("47 values"));
    EXPECT_THAT(messageOf<Failure>([] { (void)smallLens().pointsOf(wall(1), 8, 6, {.leastConfidence = 5}); }),
                HasSubstr("0 values of confidence"));
    const auto folding = changed([](CameraIntrinsics& model) { model.k1 = -40; });
    EXPECT_THAT(
        messageOf<Failure>([&] { (void)Lens(folding, DepthAlong::Axis, "c").pointsOf(wall(1), 8, 6); }),
        HasSubstr("pixels: 8 x 6 pixels, fx 6"));
    PointCloud cloud = smallLens().pointsOf(wall(1000), 8, 6);
    const std::vector<std::uint8_t> picture(std::size_t{3} * 8 * 6);
    EXPECT_THAT(messageOf<Failure>([&] { cloud.colorFrom(picture, smallLens(), {}); }),
                HasSubstr("no rotation"));
    const std::vector<std::uint8_t> five(5);
    EXPECT_THAT(messageOf<Failure>([&] { cloud.colorFrom(five, smallLens(), {}); }), HasSubstr("5 bytes"));
}

// A post of one pixel at half the distance, seen by a camera 50 cm to the right: it hides another part of the wall
// there than here, and the wall reaches out of that camera's picture on the left.
TEST(PointCloud, TakesNoColorForWhatTheOtherCameraDoesNotSee) {
    std::vector<std::uint16_t> depth = wall(2000);
    depth[8 * 2 + 5] = 1000;
    PointCloud cloud = smallLens().pointsOf(depth, 8, 6, {.keepGrid = true});
    std::vector<std::uint8_t> picture;
    for (std::uint8_t pixel = 0; pixel < 48; ++pixel)
        picture.insert(picture.end(), {pixel, static_cast<std::uint8_t>(100 + pixel), 7});
    ExtrinsicParametersInternal pose;
    pose.r11 = pose.r22 = pose.r33 = 1;
    pose.t1 = -500;
    cloud.colorFrom(picture, smallLens(), pose);
    const auto colors = cloud.colors();
    ASSERT_EQ(colors.size(), 48U);
    EXPECT_FALSE(colors[0]); // 1.5 pixels further left: outside
    // The post moves by 3 pixels, the wall by 1.5: the post is seen at column 2, before what lies behind it.
    EXPECT_EQ(colors[8 * 2 + 5], (Color{18, 118, 7}));
    EXPECT_FALSE(colors[8 * 2 + 4] && colors[8 * 2 + 4]->red == 18);
    EXPECT_TRUE(colors[8 * 5 + 7]);
    // Moved to any side a wall reaches out of the picture by one column or row.
    const std::tuple<float, float, std::ptrdiff_t> sides[]{
        {-400, 0, 6}, {400, 0, 6}, {0, -500, 8}, {0, 500, 8}};
    for (const auto& [right, down, unseen] : sides) {
        PointCloud moved = smallLens().pointsOf(wall(2000), 8, 6);
        pose.t1 = right;
        pose.t2 = down;
        moved.colorFrom(picture, smallLens(), pose);
        const auto seen = moved.colors();
        EXPECT_EQ(std::count(seen.begin(), seen.end(), std::nullopt), unseen) << right << down;
    }
}

TEST(PointCloud, WritesPlyByteForByte) {
    std::vector<std::uint16_t> depth(48);
    depth[0] = 6000;
    depth[47] = 1500;
    PointCloud cloud = smallLens().pointsOf(depth, 8, 6);
    cloud.describe({"camera SIM0570", "two\nlines"});
    std::ostringstream text;
    cloud.writePly(text, PointCloud::PlyFormat::Text);
    EXPECT_EQ(text.str(), "ply\nformat ascii 1.0\ncomment unit metre, x right, y down, z forward\n"
                          "comment camera SIM0570\ncomment two lines\nelement vertex 2\n"
                          "property float x\nproperty float y\nproperty float z\nend_header\n"
                          "-3.5 -3 6\n0.875 0.75 1.5\n");
    std::ostringstream bytes;
    cloud.writePly(bytes);
    const std::string body = bytes.str().substr(bytes.str().find("end_header\n") + 11);
    EXPECT_THAT(bytes.str(), HasSubstr("format binary_little_endian 1.0\n"));
    EXPECT_EQ(body,
              std::string("\0\0\x60\xC0\0\0\x40\xC0\0\0\xC0\x40\0\0\x60\x3F\0\0\x40\x3F\0\0\xC0\x3F", 24));

    ExtrinsicParametersInternal still;
    still.r11 = still.r22 = still.r33 = 1;
    cloud.colorFrom(std::vector<std::uint8_t>(144, 9), smallLens(), still);
    std::ostringstream colored;
    cloud.writePly(colored, PointCloud::PlyFormat::Text);
    EXPECT_THAT(colored.str(), AllOf(HasSubstr("property uchar red\n"), HasSubstr("0.875 0.75 1.5 9 9 9\n")));
}

} // namespace
} // namespace Zentara::Host
