#include <algorithm>
#include <cmath>

#include <zentara/host/color_map.h>
#include <zentara/host/correction_tables.h>
#include <zentara/host/failure.h>

namespace Zentara::Host {
namespace {

constexpr std::size_t comfortable = 320; ///< pixels
constexpr std::size_t mostPixels = 64U << 20;

/// A table does not hold its width. Where its number of values is that of a picture of 4 to 3, as QVGA is, it is drawn as
/// one; else as near to a square as may be.
std::size_t usualWidth(std::size_t count) {
    const auto fourths = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(count) / 12)));
    if (12 * fourths * fourths == count)
        return 4 * fourths;
    return static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
}

} // namespace

CorrectionPicture pictureOf(const CorrectionTable& table, const std::string& title, std::size_t width,
                            std::size_t scale) {
    const Bytes& values = table.values;
    if (values.empty())
        throw Failure(Failure::Usage, "a table without values cannot be drawn");
    CorrectionPicture drawn;
    drawn.width = width > 0 ? std::min(width, values.size()) : usualWidth(values.size());
    drawn.height = (values.size() + drawn.width - 1) / drawn.width;
    if (scale == 0)
        scale = std::max<std::size_t>(1, comfortable / std::max(drawn.width, drawn.height));
    // Divided by the scale: a product with it might wrap.
    if (scale > mostPixels || drawn.width * drawn.height > mostPixels / scale / scale)
        throw Failure(Failure::Usage, "the picture would be larger than 64 million pixels");
    const auto statistics = table.statistics();
    const ColorMap colors({static_cast<double>(statistics.least), static_cast<double>(statistics.greatest)},
                          "8-bit value", values.size() < drawn.width * drawn.height ? "no value" : "");
    Picture squares(static_cast<std::uint32_t>(drawn.width * scale),
                    static_cast<std::uint32_t>(drawn.height * scale), Color{0, 0, 0});
    for (std::uint32_t y = 0; y < squares.height(); ++y)
        for (std::uint32_t x = 0; x < squares.width(); ++x) {
            const std::size_t index = y / scale * drawn.width + x / scale;
            if (index < values.size())
                squares.set(x, y, colors(values[index]));
        }
    drawn.picture = colors.explain(squares, title);
    return drawn;
}

} // namespace Zentara::Host
