#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <zentara/host/color.h>
#include <zentara/host/export.h>
#include <zentara/host/output_file.h>

namespace Zentara::Host {

class Frame;

/// Rows of coloured pixels, from the top. A plain value that owns its pixels. Separate.
class ZENTARA_HOST_API Picture {
public:
    /// More than these pixels a picture has not, so that a wrong number does not take all memory.
    static constexpr std::uint64_t mostPixels = std::uint64_t{1} << 28;

    /// No pixel at all.
    Picture() = default;
    /// \throws Failure (Usage) for more than the most pixels, as the next one does
    Picture(std::uint32_t width, std::uint32_t height, Color background = {255, 255, 255});
    /// \param rgb red, green and blue of each pixel, row by row from the top
    /// \throws Failure (Usage) when there are not 3 x width x height
    [[nodiscard]] static Picture fromRgb(std::uint32_t width, std::uint32_t height,
                                         std::vector<std::uint8_t> rgb);

    [[nodiscard]] std::uint32_t width() const noexcept { return columns; }
    [[nodiscard]] std::uint32_t height() const noexcept { return rows; }

    /// Red, green and blue of each pixel, row by row from the top.
    [[nodiscard]] std::span<const std::uint8_t> rgb() const& noexcept { return pixels; }
    std::span<const std::uint8_t> rgb() const&& = delete; ///< they would end with the picture

    /// (0, 0) is the upper left pixel. \pre x and y are within the picture
    [[nodiscard]] Color at(std::uint32_t x, std::uint32_t y) const noexcept;
    void set(std::uint32_t x, std::uint32_t y, Color color) noexcept;

    /// The bytes of a PNG file. \throws Failure (Failed) when the picture has no pixel, or memory is short
    [[nodiscard]] std::string png() const;
    /// Writes a PNG file, whole or not at all. \throws Failure as png() and OutputFile do
    void writePng(const std::string& path, const OutputFile::Rules& rules = {}) const;

private:
    std::uint32_t columns = 0;        ///< pixels
    std::uint32_t rows = 0;           ///< pixels
    std::vector<std::uint8_t> pixels; ///< 3 x columns x rows
};

/// What a frame shows: of depth the values in colours, with their scale, whose frame it is and whether its depth is
/// corrected; of colour the picture itself.
/// \throws Failure (Usage) for sound; as Frame::depth() and Frame::rgb() do
[[nodiscard]] ZENTARA_HOST_API Picture pictureOf(const Frame& frame);

} // namespace Zentara::Host
