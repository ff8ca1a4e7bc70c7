#include "tools/viewer/cloud_painter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace Zentara::Viewer {
namespace {

constexpr std::uint32_t background = 0x181818;
constexpr float nearestShown = 0.01F; ///< metres before the eye

} // namespace

/// The rays of a lens are found once; the middle is that of its first picture, so that the cloud stands still.
void CloudPainter::learn(const Host::Frame& frame) {
    const Host::Lens& lens = frame.lens();
    const std::size_t pixels = static_cast<std::size_t>(frame.width()) * frame.height();
    if (owner == lens.owner() && rays.size() == pixels)
        return;
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    rays.assign(pixels, {none, none, none});
    const float metres = frame.info().millimetresPerUnit / 1000;
    for (std::uint32_t y = 0; y < frame.height(); ++y) {
        for (std::uint32_t x = 0; x < frame.width(); ++x) {
            const auto ray = lens.ray({static_cast<float>(x), static_cast<float>(y)});
            if (!ray)
                continue;
            const float length =
                lens.depthAlong() == Host::DepthAlong::Ray ? std::hypot(ray->x, ray->y, 1.0F) : 1.0F;
            rays[static_cast<std::size_t>(y) * frame.width() + x] = {
                ray->x * metres / length, ray->y * metres / length, metres / length};
        }
    }
    owner = lens.owner();
    const Host::ValueRange range = Host::ColorMap::rangeOf(frame.depth(), 0.02);
    middle = static_cast<float>((range.low + range.high) / 2) * metres;
}

void CloudPainter::paint(const Canvas& canvas, const Area& wanted, const Host::Frame& frame,
                         const DepthColors& colors, const CloudPose& pose) {
    learn(frame);
    const Area area = canvas.clip(wanted);
    if (area.isEmpty())
        return;
    const int width = area.width;
    const int height = area.height;
    for (int y = 0; y < height; ++y)
        std::fill_n(canvas.row(area.y + y) + area.x, width, background);
    constexpr float far = std::numeric_limits<float>::max();
    nearest.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), far);

    const double degree = std::numbers::pi / 180;
    const auto cosRight = static_cast<float>(std::cos(pose.right * degree));
    const auto sinRight = static_cast<float>(std::sin(pose.right * degree));
    const auto cosUp = static_cast<float>(std::cos(pose.up * degree));
    const auto sinUp = static_cast<float>(std::sin(pose.up * degree));
    const float focal = frame.lens().model().fx > 0
                            ? static_cast<float>(frame.lens().model().fx) * static_cast<float>(width) /
                                  static_cast<float>(frame.width()) * static_cast<float>(pose.zoom)
                            : static_cast<float>(width);
    const float centreX = static_cast<float>(width) / 2;
    const float centreY = static_cast<float>(height) / 2;
    // Points as large as pixels are when looked at from the camera leave no gaps there.
    const int size =
        std::clamp(static_cast<int>(std::ceil(pose.zoom * width / static_cast<double>(frame.width()))), 1, 8);

    const std::uint16_t* const depth = frame.depth().data();
    for (std::size_t pixel = 0; pixel < rays.size(); ++pixel) {
        const std::uint16_t value = depth[pixel];
        const Host::Point& ray = rays[pixel];
        if (value == 0)
            continue;
        const float x = ray.x * value;
        const float y = ray.y * value;
        const float z = ray.z * value - middle;
        // About the upright axis first, then about the level one.
        const float turnedX = x * cosRight + z * sinRight;
        const float inward = z * cosRight - x * sinRight;
        const float turnedY = y * cosUp - inward * sinUp;
        const float away = inward * cosUp + y * sinUp + middle;
        if (!(away > nearestShown))
            continue; // behind the eye, or without a ray
        const float left = centreX + focal * turnedX / away;
        const float top = centreY + focal * turnedY / away;
        if (!(left >= 0 && top >= 0 && left < static_cast<float>(width) && top < static_cast<float>(height)))
            continue;
        const int fromX = static_cast<int>(left);
        const int fromY = static_cast<int>(top);
        const int toX = std::min(fromX + size, width);
        const int toY = std::min(fromY + size, height);
        const std::uint32_t color = colors[value];
        for (int row = fromY; row < toY; ++row) {
            float* const before = &nearest[static_cast<std::size_t>(row) * static_cast<std::size_t>(width)];
            std::uint32_t* const out = canvas.row(area.y + row) + area.x;
            for (int column = fromX; column < toX; ++column) {
                if (away < before[column]) {
                    before[column] = away;
                    out[column] = color;
                }
            }
        }
    }
}

} // namespace Zentara::Viewer
