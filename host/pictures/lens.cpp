#include <zentara/host/lens.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/frame.h>
#include <zentara/host/stream_info.h>
#include <zentara/utils/format.h>

#include "host/once.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float millimetresPerMetre = 1000;
constexpr std::size_t stretchPixels = 1024;
constexpr int solverSteps = 20;
constexpr double solverTolerance = 0.01; ///< pixels
constexpr double steepest = 1e6;         ///< no lens sees a million times as far to the side as forward
constexpr float leastUnit = 1e-6F;       ///< millimetres that a depth of 1 may stand for
constexpr float mostUnit = 1e6F;

struct Plane {
    double x = 0;
    double y = 0;
};

/// Where an ideal lens would see (x, y, 1) and where this one does.
Plane distorted(const CameraIntrinsics& lens, Plane ideal) noexcept {
    const double xx = ideal.x * ideal.x;
    const double yy = ideal.y * ideal.y;
    const double xy = ideal.x * ideal.y;
    const double r2 = xx + yy;
    const double radial = 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
    return {ideal.x * radial + 2 * lens.p1 * xy + lens.p2 * (r2 + 2 * xx),
            ideal.y * radial + lens.p1 * (r2 + 2 * yy) + 2 * lens.p2 * xy};
}

/// Newton's method with a Jacobian by differences: the plain fixed-point iteration does not converge for lenses whose
/// distortion grows faster than the radius.
std::optional<Plane> undistorted(const CameraIntrinsics& lens, Plane seen) noexcept {
    constexpr double step = 1e-6;
    const double tolerance = solverTolerance / std::max(std::abs(lens.fx), std::abs(lens.fy));
    Plane guess = seen;
    for (int round = 0; round < solverSteps; ++round) {
        const Plane at = distorted(lens, guess);
        const Plane error{at.x - seen.x, at.y - seen.y};
        if (std::abs(error.x) < tolerance && std::abs(error.y) < tolerance)
            return guess;
        const Plane right = distorted(lens, {guess.x + step, guess.y});
        const Plane below = distorted(lens, {guess.x, guess.y + step});
        const double xx = (right.x - at.x) / step;
        const double xy = (below.x - at.x) / step;
        const double yx = (right.y - at.y) / step;
        const double yy = (below.y - at.y) / step;
        const double determinant = xx * yy - xy * yx;
        // Beyond the fold the model sees one place for two directions; only the inner one is the lens's.
        if (!(determinant > 0))
            return std::nullopt;
        guess.x -= (error.x * yy - error.y * xy) / determinant;
        guess.y -= (error.y * xx - error.x * yx) / determinant;
    }
    return std::nullopt;
}

std::optional<Point> rayAt(const CameraIntrinsics& lens, double x, double y) noexcept {
    const auto plane = undistorted(lens, {(x - lens.cx) / lens.fx, (y - lens.cy) / lens.fy});
    if (!plane || !(std::max(std::abs(plane->x), std::abs(plane->y)) <= steepest))
        return std::nullopt;
    return Point{static_cast<float>(plane->x), static_cast<float>(plane->y), 1};
}

bool finite(const CameraIntrinsics& lens) noexcept {
    for (const float value :
         {lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2, lens.k3, lens.p1, lens.p2}) {
        if (!std::isfinite(value))
            return false;
    }
    return true;
}

std::string numbers(const CameraIntrinsics& lens) {
    return Format("% x % pixels, fx %, fy %, cx %, cy %, k1 %, k2 %, k3 %, p1 %, p2 %") % lens.width %
           lens.height % lens.fx % lens.fy % lens.cx % lens.cy % lens.k1 % lens.k2 % lens.k3 % lens.p1 %
           lens.p2;
}

/// What a table holds of a pixel. Two numbers are enough where the third is the depth itself: a cloud is made as fast as
/// memory gives and takes.
struct Step {
    float x;
    float y;
};

/// Where the model that a frame's points are made with comes from.
std::string originOf(const StreamInfo& info, const CameraIntrinsics& model) {
    if (!info.lens || *info.lens != model)
        return "the program";
    switch (info.lensSource) {
    case Source::Camera:
        return "the camera";
    case Source::Description:
        return "the description";
    case Source::Failure:
        return "the description, because the camera could not be read: " + info.sourceFailure;
    case Source::None:
    case Source::Unknown:
        break;
    }
    return "a place that is not known";
}

} // namespace

struct Lens::Impl {
    Impl(const CameraIntrinsics& numbers, DepthAlong along, std::string name)
        : model(numbers), depth(along), owner(std::move(name)) {}

    /// The steps that one metre of depth makes at each pixel, to the right and down; NaN where there is no ray.
    const std::vector<Step>& table() {
        made.call([this] { make(); });
        return steps;
    }
    /// The steps forward, where they are not as long as the depth: empty for depth along the axis. After table().
    [[nodiscard]] const std::vector<float>& forward() const noexcept { return forwardSteps; }
    /// How many pixels have no ray. After table().
    [[nodiscard]] std::size_t withoutRay() const noexcept { return rayless; }

    const CameraIntrinsics model;
    const DepthAlong depth;
    const std::string owner;

private:
    void make();

    Once made;
    std::vector<Step> steps; ///< this and the next two never change once made
    std::vector<float> forwardSteps;
    std::size_t rayless = 0;
};

void Lens::Impl::make() {
    std::vector<Step> sideways;
    std::vector<float> ahead;
    sideways.reserve(std::size_t{model.width} * model.height);
    if (depth == DepthAlong::Ray)
        ahead.reserve(sideways.capacity());
    for (unsigned y = 0; y < model.height; ++y) {
        for (unsigned x = 0; x < model.width; ++x) {
            const auto ray = rayAt(model, x, y);
            rayless += !ray;
            const Point way = ray.value_or(Point{noNumber, noNumber, noNumber});
            const float length =
                depth == DepthAlong::Ray ? std::sqrt(way.x * way.x + way.y * way.y + 1) : 1.0F;
            sideways.push_back({way.x / length, way.y / length});
            if (depth == DepthAlong::Ray)
                ahead.push_back(1 / length);
        }
    }
    steps = std::move(sideways);
    forwardSteps = std::move(ahead);
}

Lens::Lens(const CameraIntrinsics& model, DepthAlong depth, std::string owner)
    : impl(std::make_shared<Impl>(model, depth, std::move(owner))) {
    if (model.width == 0 || model.height == 0 || !finite(model) || model.fx == 0 || model.fy == 0)
        throw Failure(Failure::Failed, "cannot use the lens model of " + impl->owner,
                      "size and focal length must not be zero, and all numbers finite: " + numbers(model),
                      "Calibrate the camera, or mend its description.");
}

Lens::Lens(const Lens&) = default;
Lens& Lens::operator=(const Lens&) = default;
Lens::~Lens() = default;

const CameraIntrinsics& Lens::model() const noexcept { return impl->model; }
const char* depthAlongName(DepthAlong along) noexcept { return along == DepthAlong::Axis ? "axis" : "ray"; }

DepthAlong Lens::depthAlong() const noexcept { return impl->depth; }
const std::string& Lens::owner() const noexcept { return impl->owner; }

std::optional<Point> Lens::ray(PixelPlace place) const noexcept {
    return rayAt(impl->model, place.x, place.y);
}

std::optional<PixelPlace> Lens::project(Point point) const noexcept {
    if (!(point.z > 0))
        return std::nullopt;
    const CameraIntrinsics& lens = impl->model;
    const Plane seen = distorted(lens, {double{point.x} / point.z, double{point.y} / point.z});
    return PixelPlace{static_cast<float>(lens.fx * seen.x + lens.cx),
                      static_cast<float>(lens.fy * seen.y + lens.cy)};
}

std::array<double, 9> Lens::cameraMatrix() const noexcept {
    const CameraIntrinsics& lens = impl->model;
    return {lens.fx, 0, lens.cx, 0, lens.fy, lens.cy, 0, 0, 1};
}

std::array<double, 5> Lens::distortionCoefficients() const noexcept {
    const CameraIntrinsics& lens = impl->model;
    return {lens.k1, lens.k2, lens.p1, lens.p2, lens.k3};
}

PointCloud Lens::pointsOf(std::span<const std::uint16_t> depth, std::uint32_t width, std::uint32_t height,
                          const CloudOptions& options, std::span<const std::uint16_t> confidence) const {
    const std::string attempted = "cannot make a point cloud of " + impl->owner;
    const std::size_t pixels = std::size_t{width} * height;
    if (width != impl->model.width || height != impl->model.height || depth.size() != pixels)
        throw Failure(Failure::Failed, attempted,
                      Format("the picture has % x % pixels and % values, the lens model is for % x %") %
                          width % height % depth.size() % impl->model.width % impl->model.height);
    if (!(options.millimetresPerUnit >= leastUnit && options.millimetresPerUnit <= mostUnit))
        throw Failure(Failure::Usage, attempted,
                      Format("a depth of 1 cannot stand for % mm") % options.millimetresPerUnit);
    const bool choosy = options.leastConfidence > 0;
    if (choosy && confidence.size() != pixels)
        throw Failure(Failure::Usage, attempted,
                      Format("a least confidence of % was asked for, and there are % values of confidence") %
                          options.leastConfidence % confidence.size());

    const std::vector<Step>& table = impl->table();
    const float* const forward = impl->forward().empty() ? nullptr : impl->forward().data();
    if (2 * impl->withoutRay() > pixels)
        throw Failure(Failure::Failed, attempted,
                      Format("the distortion of its lens model cannot be taken out at % of % pixels: %") %
                          impl->withoutRay() % pixels % numbers(impl->model),
                      "Calibrate the camera, or mend its description.");
    PointCloud cloud;
    cloud.sourceColumns = width;
    cloud.all.reserve(pixels);
    std::array<float, stretchPixels> metres;
    std::array<Point, stretchPixels> stretch;
    const float unitsPerMetre = millimetresPerMetre / options.millimetresPerUnit;
    // Written for the vectoriser: no branch, and the division apart, which it would move behind one. A stretch is counted and copied to its place while it is in the cache; a cloud
    // that had its size first would be cleared for nothing.
    for (std::size_t from = 0; from < pixels; from += stretchPixels) {
        const std::size_t end = std::min(pixels, from + stretchPixels);
        for (std::size_t i = from; i < end; ++i)
            metres[i - from] = static_cast<float>(depth[i]) / unitsPerMetre;
        for (std::size_t i = from; i < end; ++i)
            metres[i - from] = depth[i] == 0 ? noNumber : metres[i - from];
        for (std::size_t i = from; i < end; ++i) {
            const float far = metres[i - from];
            stretch[i - from] = {table[i].x * far, table[i].y * far, far};
        }
        for (std::size_t i = from; forward != nullptr && i < end; ++i)
            stretch[i - from].z *= forward[i];
        cloud.all.insert(cloud.all.end(), stretch.begin(),
                         stretch.begin() + static_cast<std::ptrdiff_t>(end - from));
        std::uint16_t empty = 0; // as wide as what is compared: eight at a time
        for (std::size_t i = from; i < end; ++i)
            empty = static_cast<std::uint16_t>(empty + (depth[i] == 0));
        cloud.depthless += empty;
    }
    Point* const points = cloud.all.data();
    for (std::size_t i = 0; choosy && i < pixels; ++i) {
        if (depth[i] == 0 || confidence[i] >= options.leastConfidence)
            continue;
        points[i] = {noNumber, noNumber, noNumber};
        ++cloud.doubtful;
    }
    for (std::size_t i = 0; impl->withoutRay() > 0 && i < pixels; ++i) {
        if (!std::isnan(table[i].x))
            continue;
        points[i] = {noNumber, noNumber, noNumber};
        cloud.rayless += depth[i] != 0 && !(choosy && confidence[i] < options.leastConfidence);
    }
    if (options.keepGrid) {
        cloud.columns = width;
        cloud.rows = height;
    } else {
        std::erase_if(cloud.all, [](const Point& point) { return std::isnan(point.z); });
    }
    return cloud;
}

PointCloud Lens::pointsOf(const Frame& frame, CloudOptions options) const {
    const StreamInfo& info = frame.info();
    const std::span<const std::uint16_t> depth = frame.depth(); // of a depth frame only
    if (info.depthAlong != impl->depth)
        throw Failure(Failure::Usage, "cannot make a point cloud of " + info.camera.label(),
                      std::string("its depth runs along the ") + depthAlongName(info.depthAlong) +
                          ", that of the lens of " + impl->owner + " along the " +
                          depthAlongName(impl->depth),
                      "Take the frame's own lens.");
    options.millimetresPerUnit = info.millimetresPerUnit;
    PointCloud cloud = pointsOf(depth, frame.width(), frame.height(), options, frame.confidence());
    std::vector<std::string> about{"camera " + info.camera.label() + ", mode " + info.mode.text() +
                                       ", frame " + std::to_string(frame.number()),
                                   std::string("depth along the ") + depthAlongName(info.depthAlong),
                                   "lens model from " + originOf(info, impl->model)};
    for (const std::string& correction : frame.corrections())
        about.push_back("corrected: " + correction);
    for (const std::string& missing : frame.uncorrected())
        about.push_back("not corrected: " + missing);
    cloud.describe(std::move(about));
    return cloud;
}

} // namespace Zentara::Host
