#include "tools/zentara/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "tools/zentara/color_map.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/png.h"

#include <stb/stb_easy_font.h>

namespace Zentara::Tool {
namespace {

constexpr int width = 800;
constexpr int height = 450;
constexpr int left = 85;
constexpr int right = 30;
constexpr int top = 40;
constexpr int bottom = 65;
constexpr int letterPixels = 2; // of a pixel of the font
constexpr int textHeight = 8 * letterPixels;
constexpr std::size_t mostCorners = 160; // of one letter
constexpr int wantedTicks = 6;
constexpr Rgb white{255, 255, 255};
constexpr Rgb black{0, 0, 0};
constexpr Rgb gray{215, 215, 215};
constexpr std::array<Rgb, 6> lineColors{
    {{200, 30, 30}, {30, 80, 200}, {20, 140, 60}, {190, 110, 0}, {130, 40, 160}, {0, 130, 140}}};

/// What stb_easy_font writes for each corner of a rectangle.
struct Corner {
    float x;
    float y;
    float z;
    std::array<unsigned char, 4> color;
};
static_assert(sizeof(Corner) == 16);

/// The font has these letters and looks up no other.
std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return text;
}

class Canvas {
public:
    Canvas() : pixels(std::size_t{width} * height * 3, white[0]) {}

    void dot(int x, int y, const Rgb& color) {
        if (x < 0 || x >= width || y < 0 || y >= height)
            return;
        std::copy(color.begin(), color.end(),
                  pixels.begin() + 3 * (static_cast<std::ptrdiff_t>(y) * width + x));
    }

    void line(double x0, double y0, double x1, double y1, const Rgb& color, int thickness) {
        const int steps = std::max(1, static_cast<int>(std::max(std::abs(x1 - x0), std::abs(y1 - y0))));
        for (int step = 0; step <= steps; ++step) {
            const double share = static_cast<double>(step) / steps;
            for (int extra = 0; extra < thickness; ++extra)
                dot(static_cast<int>(std::lround(x0 + share * (x1 - x0))),
                    static_cast<int>(std::lround(y0 + share * (y1 - y0))) + extra, color);
        }
    }

    void text(int x, int y, const std::string& label, const Rgb& color) {
        std::string words = printable(label);
        std::vector<Corner> corners(words.size() * mostCorners);
        const int quads = stb_easy_font_print(0, 0, words.data(), nullptr, corners.data(),
                                              static_cast<int>(corners.size() * sizeof(Corner)));
        for (int quad = 0; quad < quads; ++quad) {
            const Corner& from = corners[static_cast<std::size_t>(quad) * 4];
            const Corner& to = corners[static_cast<std::size_t>(quad) * 4 + 2];
            for (int row = pixelOf(from.y); row < pixelOf(to.y); ++row)
                for (int column = pixelOf(from.x); column < pixelOf(to.x); ++column)
                    dot(x + column, y + row, color);
        }
    }

    static int textWidth(const std::string& label) {
        return letterPixels * stb_easy_font_width(printable(label).data());
    }

    [[nodiscard]] std::string png() const { return encodePng(pixels, width, height); }

private:
    static int pixelOf(float fontPixel) { return letterPixels * static_cast<int>(fontPixel); }

    std::vector<std::uint8_t> pixels;
};

/// From values to pixels.
struct Scale {
    double low;
    double high;
    double first;
    double last;

    [[nodiscard]] double operator()(double value) const {
        return first + (value - low) / (high - low) * (last - first);
    }
};

std::string numberText(double value) {
    std::ostringstream text;
    text << (std::abs(value) < 1e-9 ? 0.0 : value);
    return text.str();
}

template<typename Member>
std::pair<double, double> extent(const std::vector<PlotLine>& lines, Member member) {
    std::pair<double, double> found{HUGE_VAL, -HUGE_VAL};
    for (const PlotLine& line : lines) {
        for (const auto& point : line.points) {
            found.first = std::min(found.first, point.*member);
            found.second = std::max(found.second, point.*member);
        }
    }
    if (!(found.first <= found.second) || !std::isfinite(found.first) || !std::isfinite(found.second))
        throw ToolFailure(ExitCode_FAILED, "there is nothing to plot");
    return found;
}

} // namespace

std::vector<double> plotTicks(double low, double high, int parts) {
    const double span = std::max({high - low, std::abs(high) * 1e-6, 1e-6});
    const double rough = span / std::max(1, parts);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = 10 * power;
    for (const double nice : {5.0, 2.0, 1.0}) {
        if (rough <= nice * power)
            step = nice * power;
    }
    std::vector<double> ticks;
    // A quotient that is whole but for rounding is whole.
    for (double at = std::floor(low / step + 1e-9); ticks.size() < 2 || ticks.back() < high - 1e-9 * step;
         ++at)
        ticks.push_back(at * step);
    return ticks;
}

std::string plotPng(const std::string& title, const std::string& xLabel, const std::vector<PlotLine>& lines) {
    using Point = std::pair<double, double>;
    const auto [xLow, xHigh] = extent(lines, &Point::first);
    const auto [yLow, yHigh] = extent(lines, &Point::second);
    const std::vector<double> xTicks = plotTicks(xLow, xHigh, wantedTicks);
    const std::vector<double> yTicks = plotTicks(yLow, yHigh, wantedTicks);
    const double xEnd = xHigh > xTicks.front() ? xHigh : xTicks.back(); // lines go up to the edge
    const Scale xScale{xTicks.front(), xEnd, left, width - right};
    const Scale yScale{yTicks.front(), yTicks.back(), height - bottom, top};

    Canvas canvas;
    for (const double tick : xTicks) {
        if (tick > xEnd)
            continue;
        canvas.line(xScale(tick), top, xScale(tick), height - bottom, gray, 1);
        const std::string number = numberText(tick);
        canvas.text(static_cast<int>(xScale(tick)) - Canvas::textWidth(number) / 2, height - bottom + 8,
                    number, black);
    }
    for (const double tick : yTicks) {
        canvas.line(left, yScale(tick), width - right, yScale(tick), gray, 1);
        const std::string number = numberText(tick);
        canvas.text(left - 8 - Canvas::textWidth(number), static_cast<int>(yScale(tick)) - textHeight / 2,
                    number, black);
    }
    canvas.line(left, top, left, height - bottom, black, 1);
    canvas.line(left, height - bottom, width - right, height - bottom, black, 1);
    canvas.text(left, 14, title, black);
    canvas.text((width - Canvas::textWidth(xLabel)) / 2, height - 28, xLabel, black);

    int legend = left + Canvas::textWidth(title) + 30;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const Rgb& color = lineColors[index % lineColors.size()];
        const auto& points = lines[index].points;
        for (std::size_t point = 1; point < points.size(); ++point)
            canvas.line(xScale(points[point - 1].first), yScale(points[point - 1].second),
                        xScale(points[point].first), yScale(points[point].second), color, 2);
        canvas.text(legend, 14, lines[index].name, color);
        legend += Canvas::textWidth(lines[index].name) + 20;
    }
    return canvas.png();
}

} // namespace Zentara::Tool
