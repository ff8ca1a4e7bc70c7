#pragma once

#include <string>

#include <zentara/host/color.h>
#include <zentara/host/picture.h>

namespace Zentara::Host {

inline constexpr Color black{0, 0, 0};

/// A white picture to draw and write on; what lies outside is cut off.
class Canvas {
public:
    static constexpr int textHeight = 16;

    /// \throws Failure when it would be larger than a picture can be
    Canvas(int columns, int rows);

    [[nodiscard]] int width() const noexcept { return static_cast<int>(drawn.width()); }
    [[nodiscard]] int height() const noexcept { return static_cast<int>(drawn.height()); }

    void dot(int x, int y, Color color);
    void line(double x0, double y0, double x1, double y1, Color color, int thickness);
    void box(int x, int y, int columns, int rows, Color color);
    void image(int x, int y, const Picture& picture);
    /// \param x, y of the upper left corner
    void text(int x, int y, const std::string& label, Color color);
    [[nodiscard]] static int textWidth(const std::string& label);

    [[nodiscard]] const Picture& picture() const noexcept { return drawn; }

private:
    Picture drawn;
};

} // namespace Zentara::Host
