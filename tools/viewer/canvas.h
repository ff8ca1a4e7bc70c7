#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace Zentara::Viewer {

/// A rectangle of pixels; one without width or height holds none. A plain value.
struct Area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] bool isEmpty() const noexcept { return width <= 0 || height <= 0; }
    [[nodiscard]] bool holds(float left, float top) const noexcept {
        return left >= static_cast<float>(x) && top >= static_cast<float>(y) &&
               left < static_cast<float>(x + width) && top < static_cast<float>(y + height);
    }
    friend bool operator==(const Area&, const Area&) = default;
};

/// Pixels that somebody else owns: 0x00RRGGBB, row by row from the top.
struct Canvas {
    std::uint32_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int pitch = 0; ///< from one row to the next, in pixels

    [[nodiscard]] std::uint32_t* row(int y) const noexcept {
        return pixels + static_cast<std::ptrdiff_t>(y) * pitch;
    }
    /// What of an area lies on it.
    [[nodiscard]] Area clip(Area area) const noexcept {
        const int right = std::min(area.x + area.width, width);
        const int bottom = std::min(area.y + area.height, height);
        area.x = std::max(area.x, 0);
        area.y = std::max(area.y, 0);
        return {area.x, area.y, right - area.x, bottom - area.y};
    }
};

/// Paints a picture into an area of the canvas, each pixel as a block.
/// \param colorOf the colour of pixel (x, y) of the source
template<typename ColorOf>
void paintBlocks(const Canvas& canvas, const Area& wanted, int columns, int rows, ColorOf colorOf) {
    const Area area = canvas.clip(wanted);
    if (area.isEmpty() || columns <= 0 || rows <= 0)
        return;
    static thread_local std::vector<int> source; // the column that each pixel shows
    source.resize(static_cast<std::size_t>(area.width));
    for (int x = 0; x < area.width; ++x)
        source[static_cast<std::size_t>(x)] = static_cast<int>(
            (static_cast<std::int64_t>(area.x - wanted.x + x) * 2 + 1) * columns / (2 * wanted.width));
    int shown = -1;
    for (int y = 0; y < area.height; ++y) {
        std::uint32_t* const out = canvas.row(area.y + y) + area.x;
        const int row = static_cast<int>((static_cast<std::int64_t>(area.y - wanted.y + y) * 2 + 1) * rows /
                                         (2 * wanted.height));
        if (row == shown) {
            std::memcpy(out, out - canvas.pitch, static_cast<std::size_t>(area.width) * sizeof *out);
            continue;
        }
        shown = row;
        for (int x = 0; x < area.width; ++x)
            out[x] = colorOf(source[static_cast<std::size_t>(x)], row);
    }
}

} // namespace Zentara::Viewer
