#pragma once

#include <cstdint>

namespace Zentara {

/// The size of a frame, by its usual name. The number is part of a mode's name, so it stays.
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

} // namespace Zentara
