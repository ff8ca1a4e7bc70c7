#pragma once

#include <cstdint>
#include <vector>

#include <zentara/host/color_map.h>
#include <zentara/host/frame.h>
#include <zentara/host/stream_info.h>

#include "tools/viewer/canvas.h"

namespace Zentara::Viewer {

/// The colour of each depth value, in the colours of Host::ColorMap. Bound to one thread.
class DepthColors final {
public:
    /// The range that is to be shown, in millimetres, for values of that unit; cheap when nothing has changed.
    void show(const Host::ValueRange& millimetres, float millimetresPerUnit);
    [[nodiscard]] std::uint32_t operator[](std::uint16_t value) const noexcept { return table[value]; }

private:
    Host::ValueRange range{0, -1};
    float unit = 0;
    std::vector<std::uint32_t> table;
};

/// As a pixel of the canvas.
[[nodiscard]] constexpr std::uint32_t pixelOf(Host::Color color) noexcept {
    return static_cast<std::uint32_t>(color.red << 16 | color.green << 8 | color.blue);
}

/// The largest area of the picture's proportions within another one, in its middle.
[[nodiscard]] Area fitted(const Area& within, std::uint32_t width, std::uint32_t height) noexcept;

/// \throws Failure as Frame::depth() does
void paintDepth(const Canvas& canvas, const Area& area, const Host::Frame& frame, const DepthColors& colors);

/// \param rgb memory that is kept from one frame to the next \throws Failure as Frame::rgb() does
void paintColor(const Canvas& canvas, const Area& area, const Host::Frame& frame,
                std::vector<std::uint8_t>& rgb);

} // namespace Zentara::Viewer
