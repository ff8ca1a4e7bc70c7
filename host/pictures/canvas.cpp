#include "host/pictures/canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "host/pictures/plot.h"
#include "host/pictures/png.h"

#include <stb/stb_easy_font.h>

namespace Zentara::Host {
namespace {

constexpr int letterPixels = Canvas::textHeight / 8; // of a pixel of the font
constexpr std::size_t mostCorners = 160;             // of one letter

/// What stb_easy_font writes for each corner of a rectangle.
struct Corner {
    float x;
    float y;
    float z;
    std::array<unsigned char, 4> color;
};
static_assert(sizeof(Corner) == 16);

/// The font has these letters and looks up no other.
std::string inFont(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return text;
}

int pixelOf(float fontPixel) { return letterPixels * static_cast<int>(fontPixel); }

} // namespace

Canvas::Canvas(int columns, int rows)
    : width(columns), height(rows),
      pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) * 3, 255) {}

void Canvas::dot(int x, int y, const Rgb& color) {
    if (x < 0 || x >= width || y < 0 || y >= height)
        return;
    std::copy(color.begin(), color.end(), pixels.begin() + 3 * (static_cast<std::ptrdiff_t>(y) * width + x));
}

void Canvas::line(double x0, double y0, double x1, double y1, const Rgb& color, int thickness) {
    const int steps = std::max(1, static_cast<int>(std::max(std::abs(x1 - x0), std::abs(y1 - y0))));
    for (int step = 0; step <= steps; ++step) {
        const double share = static_cast<double>(step) / steps;
        for (int extra = 0; extra < thickness; ++extra)
            dot(static_cast<int>(std::lround(x0 + share * (x1 - x0))),
                static_cast<int>(std::lround(y0 + share * (y1 - y0))) + extra, color);
    }
}

void Canvas::box(int x, int y, int columns, int rows, const Rgb& color) {
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            dot(x + column, y + row, color);
}

void Canvas::image(int x, int y, const std::vector<std::uint8_t>& source, int columns) {
    for (std::size_t index = 0; index + 2 < source.size(); index += 3) {
        const auto pixel = static_cast<int>(index / 3);
        dot(x + pixel % columns, y + pixel / columns, {source[index], source[index + 1], source[index + 2]});
    }
}

void Canvas::text(int x, int y, const std::string& label, const Rgb& color) {
    std::string words = inFont(label);
    std::vector<Corner> corners(words.size() * mostCorners);
    const int quads = stb_easy_font_print(0, 0, words.data(), nullptr, corners.data(),
                                          static_cast<int>(corners.size() * sizeof(Corner)));
    for (int quad = 0; quad < quads; ++quad) {
        const Corner& from = corners[static_cast<std::size_t>(quad) * 4];
        const Corner& to = corners[static_cast<std::size_t>(quad) * 4 + 2];
        box(x + pixelOf(from.x), y + pixelOf(from.y), pixelOf(to.x) - pixelOf(from.x),
            pixelOf(to.y) - pixelOf(from.y), color);
    }
}

int Canvas::textWidth(const std::string& label) {
    return letterPixels * stb_easy_font_width(inFont(label).data());
}

std::string Canvas::png() const { return encodePng(pixels, width, height); }

std::string scaledPicturePng(const std::string& title, const std::vector<std::uint8_t>& pixels, int columns,
                             int rows, const ColorScale& scale) {
    constexpr int margin = 12;
    constexpr int barWidth = 24;
    constexpr int wantedTicks = 5;
    constexpr int top = margin + Canvas::textHeight + margin;
    const int barHeight = std::max(rows, 120);
    const int bar = margin + columns + 2 * margin;
    const double span = std::max(scale.high - scale.low, 1e-9);
    int widest = Canvas::textWidth(scale.unit);
    std::vector<double> ticks = plotTicks(scale.low, scale.high, wantedTicks);
    ticks.front() = scale.low; // the range itself, with round numbers between
    ticks.back() = scale.high;
    for (const double tick : ticks)
        widest = std::max(widest, Canvas::textWidth(tickText(tick)));
    const int below = top + barHeight + margin;
    Canvas canvas(
        std::max(bar + barWidth + 2 * margin + widest + margin, Canvas::textWidth(title) + 2 * margin),
        below + Canvas::textHeight + margin);
    canvas.text(margin, margin, title, black);
    canvas.image(margin, top, pixels, columns);
    for (int row = 0; row < barHeight; ++row)
        canvas.box(bar, top + row, barWidth, 1,
                   scale.color(scale.low + span * row / std::max(1, barHeight - 1)));
    int lastText = -Canvas::textHeight;
    const int end = top + barHeight - Canvas::textHeight;
    for (const double tick : ticks) {
        const int at = top + static_cast<int>((tick - scale.low) / span * (barHeight - 1));
        const int label = std::clamp(at - Canvas::textHeight / 2, top, end);
        const bool isLast = tick == ticks.back();
        if (label < lastText + Canvas::textHeight || (!isLast && label > end - Canvas::textHeight))
            continue;
        canvas.line(bar + barWidth, at, bar + barWidth + margin / 2, at, black, 1);
        canvas.text(bar + barWidth + margin, label, tickText(tick), black);
        lastText = label;
    }
    canvas.text(bar, below, scale.unit, black);
    if (!scale.nothing.empty()) {
        canvas.box(margin, below, Canvas::textHeight, Canvas::textHeight - 4, black);
        canvas.text(margin + Canvas::textHeight + margin / 2, below, scale.nothing, black);
    }
    return canvas.png();
}

std::string tickText(double value) {
    std::ostringstream text;
    text << (std::abs(value) < 1e-9 ? 0.0 : value);
    return text.str();
}

} // namespace Zentara::Host
