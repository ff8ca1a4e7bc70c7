#include "host/pictures/color_map.h"

#include <algorithm>

namespace Zentara::Host {
namespace {

// The ends of the map are nearly black, which is the colour of "no depth"; they are left out.
constexpr float mapBegin = 0.07F;
constexpr float mapEnd = 0.92F;

std::uint8_t channel(float value) noexcept {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * 255.0F + 0.5F);
}

/// The Turbo colour map as its published polynomial of degree five: A. Mikhailov, "Turbo, An Improved Rainbow
/// Colormap for Visualization" (2019), polynomial fit by R. Du. \param x 0 (blue) to 1 (red)
Rgb turbo(float x) noexcept {
    const auto polynomial = [x](float a, float b, float c, float d, float e, float f) {
        return a + x * (b + x * (c + x * (d + x * (e + x * f))));
    };
    return {
        channel(
            polynomial(0.13572138F, 4.61539260F, -42.66032258F, 132.13108234F, -152.94239396F, 59.28637943F)),
        channel(polynomial(0.09140261F, 2.19418839F, 4.84296658F, -14.18503333F, 4.27729857F, 2.82956604F)),
        channel(
            polynomial(0.10667330F, 12.64194608F, -60.58204836F, 110.36276771F, -89.90310912F, 27.34824973F)),
    };
}

} // namespace

DepthRange depthRange(const std::uint16_t* depth, std::size_t count, double trim) {
    std::vector<std::uint16_t> valid;
    std::copy_if(depth, depth + count, std::back_inserter(valid),
                 [](std::uint16_t value) { return value != 0; });
    if (valid.empty())
        return {};
    const auto skipped = static_cast<std::ptrdiff_t>(static_cast<double>(valid.size() - 1) * trim);
    const auto low = valid.begin() + skipped;
    std::nth_element(valid.begin(), low, valid.end());
    const std::uint16_t nearest = *low;
    const auto high = valid.end() - 1 - skipped;
    std::nth_element(valid.begin(), high, valid.end());
    return {nearest, *high};
}

Rgb depthColor(std::uint16_t depth, const DepthRange& range) noexcept {
    if (depth == 0)
        return {0, 0, 0};
    const float width =
        std::max(1.0F, static_cast<float>(range.farthest) - static_cast<float>(range.nearest));
    const float away = (static_cast<float>(depth) - static_cast<float>(range.nearest)) / width;
    return turbo(mapEnd - (mapEnd - mapBegin) * std::clamp(away, 0.0F, 1.0F));
}

std::vector<std::uint8_t> colorize(const std::uint16_t* depth, std::size_t count, const DepthRange& range) {
    std::vector<std::uint8_t> pixels;
    pixels.reserve(count * 3);
    for (std::size_t index = 0; index < count; ++index) {
        const Rgb color = depthColor(depth[index], range);
        pixels.insert(pixels.end(), color.begin(), color.end());
    }
    return pixels;
}

} // namespace Zentara::Host
