#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/pictures/color_map.h"

namespace Zentara::Host {

inline constexpr Rgb black{0, 0, 0};

/// A white picture to draw and write on; what lies outside is cut off.
class Canvas {
public:
    static constexpr int textHeight = 16;

    Canvas(int columns, int rows);

    void dot(int x, int y, const Rgb& color);
    void line(double x0, double y0, double x1, double y1, const Rgb& color, int thickness);
    void box(int x, int y, int columns, int rows, const Rgb& color);
    /// Rows from the top, three bytes a pixel.
    void image(int x, int y, const std::vector<std::uint8_t>& pixels, int columns);
    /// \param x, y of the upper left corner
    void text(int x, int y, const std::string& label, const Rgb& color);
    [[nodiscard]] static int textWidth(const std::string& label);

    /// A PNG file's bytes. \throws Failure when the picture cannot be encoded
    [[nodiscard]] std::string png() const;

private:
    int width;
    int height;
    std::vector<std::uint8_t> pixels;
};

/// What the colours of a picture mean.
struct ColorScale {
    double low = 0;  ///< the value at the upper end of the scale
    double high = 0; ///< and at the lower
    std::string unit;
    std::function<Rgb(double)> color;
    std::string nothing; ///< what black stands for; empty when there is no black
};

/// A picture with a title above it, the scale with numbers and unit beside it, and what black is below.
/// \param pixels rows from the top, three bytes a pixel \throws Failure when the picture cannot be encoded
[[nodiscard]] std::string scaledPicturePng(const std::string& title, const std::vector<std::uint8_t>& pixels,
                                           int columns, int rows, const ColorScale& scale);

/// The fewest digits that a person needs: "0.5", "1200".
[[nodiscard]] std::string tickText(double value);

} // namespace Zentara::Host
