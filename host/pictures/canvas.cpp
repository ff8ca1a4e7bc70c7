#include "host/pictures/canvas.h"

#include <algorithm>
#include <array>
#include <cmath>

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
    : drawn(static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows)) {}

void Canvas::dot(int x, int y, Color color) {
    if (x < 0 || x >= width() || y < 0 || y >= height())
        return;
    drawn.set(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), color);
}

void Canvas::line(double x0, double y0, double x1, double y1, Color color, int thickness) {
    // A dot for each pixel of the longer way; a thick line grows downwards.
    const int steps = std::max(1, static_cast<int>(std::max(std::abs(x1 - x0), std::abs(y1 - y0))));
    for (int step = 0; step <= steps; ++step) {
        const double share = static_cast<double>(step) / steps;
        for (int extra = 0; extra < thickness; ++extra)
            dot(static_cast<int>(std::lround(x0 + share * (x1 - x0))),
                static_cast<int>(std::lround(y0 + share * (y1 - y0))) + extra, color);
    }
}

void Canvas::box(int x, int y, int columns, int rows, Color color) {
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            dot(x + column, y + row, color);
}

void Canvas::image(int x, int y, const Picture& picture) {
    for (std::uint32_t row = 0; row < picture.height(); ++row)
        for (std::uint32_t column = 0; column < picture.width(); ++column)
            dot(x + static_cast<int>(column), y + static_cast<int>(row), picture.at(column, row));
}

void Canvas::text(int x, int y, const std::string& label, Color color) {
    std::string words = inFont(label);
    std::vector<Corner> corners(words.size() * mostCorners);
    const int quads = stb_easy_font_print(0, 0, words.data(), nullptr, corners.data(),
                                          static_cast<int>(corners.size() * sizeof(Corner)));
    for (int quad = 0; quad < quads; ++quad) {
        // The first and the third corner of each rectangle are opposite ones.
        const Corner& from = corners[static_cast<std::size_t>(quad) * 4];
        const Corner& to = corners[static_cast<std::size_t>(quad) * 4 + 2];
        box(x + pixelOf(from.x), y + pixelOf(from.y), pixelOf(to.x) - pixelOf(from.x),
            pixelOf(to.y) - pixelOf(from.y), color);
    }
}

int Canvas::textWidth(const std::string& label) {
    return letterPixels * stb_easy_font_width(inFont(label).data());
}

} // namespace Zentara::Host
