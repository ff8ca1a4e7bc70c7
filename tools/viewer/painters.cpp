#include "tools/viewer/painters.h"

namespace Zentara::Viewer {

void DepthColors::show(const Host::ValueRange& millimetres, float millimetresPerUnit) {
    if (millimetres == range && unit == millimetresPerUnit)
        return;
    range = millimetres;
    unit = millimetresPerUnit;
    const Host::ColorMap map(range, "mm", "no reading");
    table.resize(65'536);
    for (std::size_t value = 1; value < table.size(); ++value)
        table[value] = pixelOf(map(static_cast<double>(value) * unit));
}

Area fitted(const Area& within, std::uint32_t width, std::uint32_t height) noexcept {
    if (within.isEmpty() || width == 0 || height == 0)
        return {};
    const double scale =
        std::min(within.width / static_cast<double>(width), within.height / static_cast<double>(height));
    const Area area{0, 0, std::max(1, static_cast<int>(width * scale)),
                    std::max(1, static_cast<int>(height * scale))};
    return {within.x + (within.width - area.width) / 2, within.y, area.width, area.height};
}

void paintDepth(const Canvas& canvas, const Area& area, const Host::Frame& frame, const DepthColors& colors) {
    const std::uint16_t* const depth = frame.depth().data();
    const auto columns = static_cast<int>(frame.width());
    paintBlocks(canvas, area, columns, static_cast<int>(frame.height()), [&](int x, int y) {
        return colors[depth[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) +
                            static_cast<std::size_t>(x)]];
    });
}

void paintColor(const Canvas& canvas, const Area& area, const Host::Frame& frame,
                std::vector<std::uint8_t>& rgb) {
    const auto columns = static_cast<std::size_t>(frame.width());
    rgb.resize(columns * frame.height() * 3);
    frame.rgb(rgb);
    paintBlocks(canvas, area, static_cast<int>(columns), static_cast<int>(frame.height()), [&](int x, int y) {
        const std::uint8_t* const pixel =
            &rgb[(static_cast<std::size_t>(y) * columns + static_cast<std::size_t>(x)) * 3];
        return static_cast<std::uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
    });
}

} // namespace Zentara::Viewer
