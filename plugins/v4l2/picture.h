#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace Zentara::V4l2 {

/// How a driver lays out its frames.
struct Layout {
    std::uint32_t fourCC = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bytesPerLine = 0; ///< of the first plane
    std::uint32_t bytes = 0;        ///< of a buffer, at least what a frame takes

    friend bool operator==(const Layout&, const Layout&) = default;
};

/// What a device makes of the driver's frames.
enum class Delivery {
    Depth,      ///< 16-bit values as they come, without padding
    Color,      ///< packed YUY2 (Y0 U Y1 V), luminance from 16 to 235, whatever the camera sends
    Compressed, ///< as they come, of any size
};

/// Whether frames of that format can be delivered so.
[[nodiscard]] bool canDeliver(std::uint32_t fourCC, Delivery delivery) noexcept;

/// Makes frames for one stream. Separate.
class Picture {
public:
    /// \throws Plugin::NotSupportedPluginException for a format that cannot be delivered so, or an odd width;
    ///         Plugin::ConfigurationPluginException for a layout that is none: no pixels, more than 16,384 in a row or
    ///         column, lines or buffers that are too short for them, buffers beyond 256 MiB
    Picture(const Layout& layout, Delivery delivery);

    /// Bytes of what is delivered for a frame of that many bytes.
    [[nodiscard]] std::size_t bytesFor(std::size_t used) const noexcept {
        return fixedBytes ? *fixedBytes : used;
    }

    /// \param frame as the driver gave it \param place `bytesFor` of the frame
    /// \return false for a frame that is cut short or broken; what is at `place` is worth nothing then
    [[nodiscard]] bool make(std::span<const std::byte> frame, std::byte* place) const;

private:
    using Maker = std::function<bool(std::span<const std::byte>, std::byte*)>;

    std::optional<std::size_t> fixedBytes; ///< nothing for compressed ones
    std::size_t leastBytes = 1;            ///< of the driver's frame
    Maker maker;
};

} // namespace Zentara::V4l2
