#include <zentara/host/cloud_view.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/pictures/canvas.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

constexpr std::uint32_t mostSide = 8192;
constexpr double trim = 0.005; ///< share of the points left out at either end, so that wild ones do not count
constexpr double awayOfRadius = 3;     ///< the viewer's distance from the middle, in the cloud's own radius
constexpr double filled = 0.92;        ///< of the picture, by the cloud
constexpr double splatOfSpacing = 2.2; ///< a point's size, of the distance between points: no gaps in a plane
constexpr Color background{34, 36, 42};
constexpr Color withoutColor{128, 128, 128};

struct Place {
    double x = 0;
    double y = 0;
    double z = 0;
};

/// What lies between the trimmed ends. Found without sorting all: a cloud has many points.
ValueRange rangeOf(std::vector<float>& values) {
    const auto skipped = static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * trim);
    std::nth_element(values.begin(), values.begin() + skipped, values.end());
    const float low = values[static_cast<std::size_t>(skipped)];
    const auto last = static_cast<std::ptrdiff_t>(values.size()) - 1 - skipped;
    std::nth_element(values.begin(), values.begin() + last, values.end());
    return {static_cast<double>(low), static_cast<double>(values[static_cast<std::size_t>(last)])};
}

template<typename Member>
ValueRange rangeAlong(const std::vector<Point>& points, Member member) {
    std::vector<float> values;
    values.reserve(points.size());
    for (const Point& point : points)
        values.push_back(point.*member);
    return rangeOf(values);
}

/// The turned cloud as the viewer sees it, and where in the picture.
class Eye {
public:
    Eye(const CloudView& view, const std::vector<Point>& points)
        : xs(rangeAlong(points, &Point::x)), ys(rangeAlong(points, &Point::y)),
          zs(rangeAlong(points, &Point::z)), yaw(view.right * degree), pitch(view.up * degree) {
        const double radius = std::hypot(xs.high - xs.low, ys.high - ys.low, zs.high - zs.low) / 2;
        away = std::max(awayOfRadius * radius, 1e-6);
        std::vector<float> across;
        std::vector<float> down;
        for (const Point& point : points) {
            const Place place = turned(point);
            if (place.z <= 0)
                continue;
            across.push_back(static_cast<float>(place.x / place.z));
            down.push_back(static_cast<float>(place.y / place.z));
        }
        // What is seen, not the cloud itself, is to fill the picture: what is near takes more of it.
        const ValueRange us = across.empty() ? ValueRange{} : rangeOf(across);
        const ValueRange vs = down.empty() ? ValueRange{} : rangeOf(down);
        scale = filled * std::min(view.width / std::max(us.high - us.low, 1e-9),
                                  view.height / std::max(vs.high - vs.low, 1e-9));
        middleX = view.width / 2.0 - scale * (us.low + us.high) / 2;
        middleY = view.height / 2.0 - scale * (vs.low + vs.high) / 2;
    }

    /// In the picture, in pixels; z is the distance from the viewer, not above 0 behind him.
    [[nodiscard]] Place operator()(const Point& point) const {
        const Place place = turned(point);
        return {middleX + scale * place.x / place.z, middleY + scale * place.y / place.z, place.z};
    }
    /// How many pixels one metre takes at that distance.
    [[nodiscard]] double pixelsPerMetre(double z) const { return scale / z; }
    [[nodiscard]] const ValueRange& distances() const { return zs; }

private:
    static constexpr double degree = 3.14159265358979323846 / 180;

    /// About the middle of the cloud, first to the side, then up; then moved away from the viewer.
    [[nodiscard]] Place turned(const Point& point) const {
        const double x = point.x - (xs.low + xs.high) / 2;
        const double y = point.y - (ys.low + ys.high) / 2;
        const double z = point.z - (zs.low + zs.high) / 2;
        const double x1 = x * std::cos(yaw) + z * std::sin(yaw);
        const double z1 = z * std::cos(yaw) - x * std::sin(yaw);
        return {x1, y * std::cos(pitch) - z1 * std::sin(pitch),
                z1 * std::cos(pitch) + y * std::sin(pitch) + away};
    }

    ValueRange xs;
    ValueRange ys;
    ValueRange zs;
    double yaw;
    double pitch;
    double away = 0;
    double scale = 0;
    double middleX = 0;
    double middleY = 0;
};

/// Metres between neighbours, were the points spread over the front of the cloud.
double spacingOf(const std::vector<Point>& points) {
    const ValueRange xs = rangeAlong(points, &Point::x);
    const ValueRange ys = rangeAlong(points, &Point::y);
    return std::sqrt((xs.high - xs.low) * (ys.high - ys.low) / static_cast<double>(points.size()));
}

/// A picture whose pixels remember how far away what they show is.
class DepthBuffer {
public:
    DepthBuffer(std::uint32_t width, std::uint32_t height)
        : drawn(width, height, background),
          nearest(std::size_t{width} * height, std::numeric_limits<double>::max()) {}

    void square(const Place& at, double side, Color color) {
        // The pixels whose centre is not before the one edge and before the other: squares that touch share none.
        const auto end = [](double edge, std::uint32_t most) {
            return static_cast<std::uint32_t>(std::clamp(std::ceil(edge), 0.0, static_cast<double>(most)));
        };
        for (std::uint32_t y = end(at.y - side / 2, drawn.height()); y < end(at.y + side / 2, drawn.height());
             ++y)
            for (std::uint32_t x = end(at.x - side / 2, drawn.width());
                 x < end(at.x + side / 2, drawn.width()); ++x) {
                double& before = nearest[std::size_t{y} * drawn.width() + x];
                if (at.z >= before)
                    continue;
                before = at.z;
                drawn.set(x, y, color);
            }
    }
    [[nodiscard]] const Picture& picture() const { return drawn; }

private:
    Picture drawn;
    std::vector<double> nearest;
};

Picture underTitle(const Picture& picture, const std::string& title) {
    constexpr int margin = 12;
    constexpr int top = margin + Canvas::textHeight + margin;
    Canvas canvas(std::max(static_cast<int>(picture.width()), Canvas::textWidth(title)) + 2 * margin,
                  top + static_cast<int>(picture.height()) + margin);
    canvas.text(margin, margin, title, black);
    canvas.image(margin, top, picture);
    return canvas.picture();
}

} // namespace

Picture CloudView::draw(const PointCloud& cloud, const std::string& title) const {
    if (width == 0 || height == 0 || width > mostSide || height > mostSide || !std::isfinite(right) ||
        !std::isfinite(up))
        throw Failure(Failure::Usage,
                      Format("cannot draw a cloud in % x % pixels, % degrees to the right and % up") % width %
                          height % right % up);
    std::vector<Point> points;
    std::vector<std::optional<Color>> colors;
    const bool painted = ownColors && !cloud.colors().empty();
    for (std::size_t i = 0; i < cloud.points().size(); ++i) {
        const Point& point = cloud.points()[i];
        if (!std::isfinite(point.x + point.y + point.z))
            continue;
        points.push_back(point);
        if (painted)
            colors.push_back(cloud.colors()[i]);
    }
    if (points.empty())
        throw Failure(Failure::Failed, "cannot draw the cloud: it has no point");
    const Eye eye(*this, points);
    const ColorMap map(range.value_or(eye.distances()), "m", "");
    const double splat = splatOfSpacing * spacingOf(points);
    DepthBuffer buffer(width, height);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Place place = eye(points[i]);
        if (place.z > 0)
            buffer.square(place, std::clamp(splat * eye.pixelsPerMetre(place.z), 1.0, 64.0),
                          painted ? colors[i].value_or(withoutColor) : map(points[i].z));
    }
    return painted ? underTitle(buffer.picture(), title) : map.explain(buffer.picture(), title);
}

} // namespace Zentara::Host
