#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Zentara::V4l2 {

/// Decodes the JPEG pictures of a stream, those without Huffman tables too, as cameras send them. Separate.
class JpegDecoder {
public:
    JpegDecoder();
    ~JpegDecoder();
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    /// Packed YUY2 with luminance from 16 to 235.
    /// \param yuy2 2 x width x height bytes; the width is even
    /// \return false for what is broken, cut short, or no picture of that size
    [[nodiscard]] bool decode(std::span<const std::byte> jpeg, std::uint32_t width, std::uint32_t height,
                              std::byte* yuy2);

private:
    void* const handle;               ///< the library's; null when it had no memory
    std::vector<unsigned char> space; ///< the three planes, each after the other
};

} // namespace Zentara::V4l2
