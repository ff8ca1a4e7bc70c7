#include "host/streams/yuy2.h"

#include <algorithm>

namespace Zentara::Host {
namespace {

std::uint8_t clamped(int value) noexcept { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

/// In 1/256: the conversion of BT.601 with whole numbers.
void storeRgb(std::uint8_t* rgb, int y, int u, int v) noexcept {
    const int luma = 298 * (y - 16) + 128;
    rgb[0] = clamped((luma + 409 * (v - 128)) / 256);
    rgb[1] = clamped((luma - 100 * (u - 128) - 208 * (v - 128)) / 256);
    rgb[2] = clamped((luma + 516 * (u - 128)) / 256);
}

} // namespace

void rgbOfYuy2(const std::uint8_t* yuy2, std::size_t pixels, std::uint8_t* rgb) noexcept {
    for (std::size_t pair = 0; pair < pixels / 2; ++pair, yuy2 += 4, rgb += 6) {
        storeRgb(rgb, yuy2[0], yuy2[1], yuy2[3]);
        storeRgb(rgb + 3, yuy2[2], yuy2[1], yuy2[3]);
    }
}

} // namespace Zentara::Host
