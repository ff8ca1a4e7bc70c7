#pragma once

#include <cstdint>
#include <initializer_list>

namespace Zentara {

/// The size of a frame, by its usual name; a size that has none is the number that `frameFormatOf` makes of it. The number is
/// part of a mode's name, so it stays.
enum FrameFormat : std::int32_t {
    FrameFormat_NONE = 0,    ///< not told
    FrameFormat_QQVGA = 1,   ///< 160 x 120
    FrameFormat_QVGA = 2,    ///< 320 x 240
    FrameFormat_VGA = 3,     ///< 640 x 480
    FrameFormat_HD720 = 4,   ///< 1280 x 720
    FrameFormat_HD1080 = 5,  ///< 1920 x 1080
    FrameFormat_DEFAULT = 6, ///< whatever size the node itself delivers
};

/// A size in pixels. A copyable value. Separate.
struct FrameSize {
    std::uint32_t width = 0;  ///< columns
    std::uint32_t height = 0; ///< rows

    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

/// The size that a format stands for; 0 x 0 for those that stand for none. Safe.
[[nodiscard]] constexpr FrameSize frameSize(FrameFormat format) noexcept {
    const std::uint32_t columns = static_cast<std::uint32_t>(format) >> 16;
    const std::uint32_t rows = static_cast<std::uint32_t>(format) & 0xFFFF;
    if (columns != 0)
        return format > 0 && rows != 0 ? FrameSize{columns, rows} : FrameSize{};
    switch (format) {
    case FrameFormat_QQVGA:
        return {160, 120};
    case FrameFormat_QVGA:
        return {320, 240};
    case FrameFormat_VGA:
        return {640, 480};
    case FrameFormat_HD720:
        return {1280, 720};
    case FrameFormat_HD1080:
        return {1920, 1080};
    default:
        return {};
    }
}

/// The format that stands for a size: that with its name, else 65,536 times the columns plus the rows. NONE for a size
/// without pixels, or with more than 32,767 columns or 65,535 rows. Safe.
[[nodiscard]] constexpr FrameFormat frameFormatOf(FrameSize size) noexcept {
    for (const FrameFormat named :
         {FrameFormat_QQVGA, FrameFormat_QVGA, FrameFormat_VGA, FrameFormat_HD720, FrameFormat_HD1080}) {
        if (frameSize(named) == size)
            return named;
    }
    const bool fits = size.width > 0 && size.width <= 0x7FFF && size.height > 0 && size.height <= 0xFFFF;
    return fits ? static_cast<FrameFormat>(size.width << 16 | size.height) : FrameFormat_NONE;
}

} // namespace Zentara
