#include <zentara/host/color_map.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/pictures/canvas.h"
#include "host/pictures/ticks.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

// The ends of the map are nearly black, which is the colour of "no depth"; they are left out.
constexpr float mapBegin = 0.07F;
constexpr float mapEnd = 0.92F;

std::uint8_t channel(float value) noexcept {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * 255.0F + 0.5F);
}

/// The Turbo colour map as its published polynomial of degree five: A. Mikhailov, "Turbo, An Improved Rainbow
/// Colormap for Visualization" (2019), polynomial fit by R. Du. \param x 0 (blue) to 1 (red)
Color turbo(float x) noexcept {
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

ColorMap::ColorMap(ValueRange range, std::string unitOfValues, std::string whatIsNothing)
    : ends(range), measure(std::move(unitOfValues)), absence(std::move(whatIsNothing)) {
    if (!std::isfinite(range.high - range.low) || range.low > range.high)
        throw Failure(Failure::Usage,
                      Format("there are no colours for values from % to %") % range.low % range.high);
}

ValueRange ColorMap::rangeOf(std::span<const std::uint16_t> values, double trim) {
    std::vector<std::uint16_t> valid;
    std::copy_if(values.begin(), values.end(), std::back_inserter(valid),
                 [](std::uint16_t value) { return value != 0; });
    if (valid.empty())
        return {};
    const double share = trim > 0 ? std::min(trim, 0.5) : 0; // NaN is none
    const auto skipped = static_cast<std::ptrdiff_t>(static_cast<double>(valid.size() - 1) * share);
    const auto low = valid.begin() + skipped;
    std::nth_element(valid.begin(), low, valid.end());
    const std::uint16_t nearest = *low;
    const auto high = valid.end() - 1 - skipped;
    std::nth_element(valid.begin(), high, valid.end());
    return {static_cast<double>(nearest), static_cast<double>(*high)};
}

ColorMap ColorMap::ofDepths(std::span<const std::uint16_t> depths, const std::string& unit) {
    return {rangeOf(depths), unit, "no depth"};
}

Color ColorMap::operator()(double value) const noexcept {
    if (std::isnan(value))
        return black;
    const double span = ends.high - ends.low;
    const double share = span > 0 ? std::clamp((value - ends.low) / span, 0.0, 1.0) : 0.0;
    // Turned round: the least value, of depths the nearest, is red.
    return turbo(mapEnd - (mapEnd - mapBegin) * static_cast<float>(share));
}

Picture ColorMap::paint(std::span<const std::uint16_t> values, std::uint32_t width,
                        std::uint32_t height) const {
    if (values.size() != std::size_t{width} * height)
        throw Failure(Failure::Usage,
                      Format("% values make no picture of % x % pixels") % values.size() % width % height);
    std::vector<std::uint8_t> pixels;
    pixels.reserve(3 * values.size());
    for (const std::uint16_t value : values) {
        const Color color = value == 0 ? black : (*this)(value);
        pixels.insert(pixels.end(), {color.red, color.green, color.blue});
    }
    return Picture::fromRgb(width, height, std::move(pixels));
}

Picture ColorMap::explain(const Picture& picture, const std::string& title) const {
    constexpr int margin = 12;
    constexpr int barWidth = 24;
    constexpr int wantedTicks = 5;
    constexpr int top = margin + Canvas::textHeight + margin;
    const int barHeight = std::max(static_cast<int>(picture.height()), 120);
    const int bar = margin + static_cast<int>(picture.width()) + 2 * margin;
    const double span = std::max(ends.high - ends.low, 1e-9);
    int widest = Canvas::textWidth(measure);
    std::vector<double> ticks = plotTicks(ends.low, ends.high, wantedTicks);
    ticks.front() = ends.low; // the range itself, with round numbers between
    ticks.back() = ends.high;
    for (const double tick : ticks)
        widest = std::max(widest, Canvas::textWidth(tickText(tick)));
    const int below = top + barHeight + margin;
    Canvas canvas(
        std::max(bar + barWidth + 2 * margin + widest + margin, Canvas::textWidth(title) + 2 * margin),
        below + Canvas::textHeight + margin);
    canvas.text(margin, margin, title, black);
    canvas.image(margin, top, picture);
    for (int row = 0; row < barHeight; ++row)
        canvas.box(bar, top + row, barWidth, 1, (*this)(ends.low + span * row / (barHeight - 1)));
    int lastText = -Canvas::textHeight;
    const int end = top + barHeight - Canvas::textHeight;
    for (const double tick : ticks) {
        const int at = top + static_cast<int>((tick - ends.low) / span * (barHeight - 1));
        const int label = std::clamp(at - Canvas::textHeight / 2, top, end);
        // The two ends are always written; what would touch one of them, or the label above, is not.
        const bool isLast = tick == ticks.back();
        if (label < lastText + Canvas::textHeight || (!isLast && label > end - Canvas::textHeight))
            continue;
        canvas.line(bar + barWidth, at, bar + barWidth + margin / 2, at, black, 1);
        canvas.text(bar + barWidth + margin, label, tickText(tick), black);
        lastText = label;
    }
    canvas.text(bar, below, measure, black);
    if (!absence.empty()) {
        canvas.box(margin, below, Canvas::textHeight, Canvas::textHeight - 4, black);
        canvas.text(margin + Canvas::textHeight + margin / 2, below, absence, black);
    }
    return canvas.picture();
}

} // namespace Zentara::Host
