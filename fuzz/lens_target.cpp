// Any numbers as a lens model, a pose and a depth picture. A lens that cannot be is refused; a ray is seen where it came
// from; a cloud has each pixel once, as a point of three finite numbers or under the reason why it has none; and its PLY files,
// read back, are the cloud, with whatever was said of it.
#include <cmath>
#include <sstream>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/lens.h>

#include "input.h"
#include "ply_file.h"

namespace Zentara::Fuzz {
namespace {

using namespace Zentara::Host;

constexpr std::uint32_t mostSide = 48; ///< of a picture, pixels

/// Half of the numbers are any, half are those of a lens that somebody might have.
float coefficient(Input& input, float usual) {
    if ((input.byte() & 1) != 0)
        return input.number<float>();
    return usual * static_cast<float>(input.number<std::int16_t>()) / 32768.0F;
}

CameraIntrinsics modelOf(Input& input) {
    CameraIntrinsics model;
    model.width = static_cast<std::uint16_t>(input.byte() % (mostSide + 1));
    model.height = static_cast<std::uint16_t>(input.byte() % (mostSide + 1));
    for (float* number : {&model.fx, &model.fy, &model.cx, &model.cy})
        *number = coefficient(input, 64);
    for (float* number : {&model.k1, &model.k2, &model.k3, &model.p1, &model.p2})
        *number = coefficient(input, 0.5F);
    return model;
}

bool isUsual(const CameraIntrinsics& model) {
    const auto lies = [](float number, float least, float most) {
        return std::abs(number) >= least && std::abs(number) <= most;
    };
    return lies(model.fx, 1, 1000) && lies(model.fy, 1, 1000) && lies(model.cx, 0, 1000) &&
           lies(model.cy, 0, 1000) && lies(model.k1, 0, 1) && lies(model.k2, 0, 1) && lies(model.k3, 0, 1) &&
           lies(model.p1, 0, 1) && lies(model.p2, 0, 1);
}

void checkRays(const Lens& lens, Input& input) {
    for (int i = 0; i < 4; ++i) {
        const PixelPlace place{input.number<float>(), static_cast<float>(input.byte())};
        const auto ray = lens.ray(place);
        if (!ray)
            continue;
        require(std::isfinite(ray->x) && std::isfinite(ray->y) && ray->z == 1);
        if (!isUsual(lens.model()) || std::abs(place.x) > 1000)
            continue;
        // A hundredth of a pixel, and what the rounding of the ray's numbers can do far from the axis.
        const float square = 1 + ray->x * ray->x + ray->y * ray->y;
        const float focal = std::max(std::abs(lens.model().fx), std::abs(lens.model().fy));
        const float tolerance = 0.02F + focal * 1e-6F * square * square * square * square;
        const auto seen = lens.project(*ray);
        require(seen && std::abs(seen->x - place.x) < tolerance && std::abs(seen->y - place.y) < tolerance);
    }
}

/// \param said of the cloud, in the order in which its file says it
void checkFile(const PointCloud& cloud, std::vector<std::string> said) {
    for (std::string& line : said)
        for (char& letter : line)
            letter = letter == '\n' || letter == '\r' ? ' ' : letter;
    said.insert(said.begin(), "unit metre, x right, y down, z forward");
    if (cloud.width() != 0)
        said.push_back("grid " + std::to_string(cloud.width()) + " x " + std::to_string(cloud.height()));
    for (const auto format : {PointCloud::PlyFormat::Binary, PointCloud::PlyFormat::Text}) {
        std::ostringstream out;
        cloud.writePly(out, format);
        const std::string bytes = out.str();
        PlyFile file(bytes);
        require(file.comments == said);
        file.compareWith(cloud);
    }
}

void checkCloud(const Lens& lens, Input& input) {
    const CameraIntrinsics& model = lens.model();
    CloudOptions options;
    options.keepGrid = (input.byte() & 1) != 0;
    options.leastConfidence = input.number<std::uint16_t>();
    options.millimetresPerUnit = coefficient(input, 2);
    const std::size_t pixels = std::size_t{model.width} * model.height;
    std::vector<std::uint16_t> depth(pixels);
    input.take(depth.data(), 2 * pixels);
    std::vector<std::uint16_t> confidence(options.leastConfidence > 0 ? pixels : 0);
    input.take(confidence.data(), 2 * confidence.size());
    PointCloud cloud = lens.pointsOf(depth, model.width, model.height, options, confidence);
    std::size_t there = 0;
    for (const Point& point : cloud.points())
        there += std::isnan(point.z) ? 0U : 1U;
    require(there + cloud.withoutDepth() + cloud.belowConfidence() + cloud.withoutRay() == pixels);
    require(cloud.points().size() == (options.keepGrid ? pixels : there));
    const std::string where = input.text(input.byte() % 32);
    const std::string why = "x" + input.text(input.byte() % 32);
    cloud.describe({where, "line"});
    cloud.leaveUncolored(why);
    checkFile(cloud, {where, "line", "no colour: " + why});

    ExtrinsicParametersInternal pose;
    for (float* number : {&pose.r11, &pose.r12, &pose.r13, &pose.r21, &pose.r22, &pose.r23, &pose.r31,
                          &pose.r32, &pose.r33, &pose.t1, &pose.t2, &pose.t3})
        *number = coefficient(input, 1);
    const std::vector<std::uint8_t> rgb(3 * pixels, 0x80);
    if ((input.byte() & 1) != 0)
        pose = {1, 0, 0, 0, 1, 0, 0, 0, 1, pose.t1, pose.t2, pose.t3};
    cloud.colorFrom(rgb, lens, pose);
    require(cloud.colors().size() == cloud.points().size());
    checkFile(cloud, {where, "line"});
}

} // namespace
} // namespace Zentara::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara;
    Fuzz::Input input(data, size);
    try {
        const auto along = (input.byte() & 1) != 0 ? Host::DepthAlong::Ray : Host::DepthAlong::Axis;
        const Host::Lens lens(Fuzz::modelOf(input), along, "input");
        Fuzz::checkRays(lens, input);
        Fuzz::checkCloud(lens, input);
    } catch (const Host::Failure& failure) {
        Fuzz::require(failure.what()[0] != '\0');
    }
    return 0;
}
