#pragma once

#include <cstddef>
#include <cstdint>

#include "plugins/descriptions/wire.h"

/// What a depth node's readBuffer writes: three planes, without padding, row after row from the top left
/// pixel, of unsigned 16-bit values in the machine's byte order.
///
///     offset 0         depth       millimetres; 0: none at this pixel
///     offset 153,600   confidence  0 to 1000; 0: no depth at this pixel
///     offset 307,200   phase       0 to 65535 for one turn; times the node's phase scaling it is the distance in
///                                  millimetres. All 0 while the camera sends depth instead of phase
namespace Zentara::Cameras {

inline constexpr std::size_t depthFramePhaseOffset = confidenceOffset + pixelCount * sizeof(std::uint16_t);
inline constexpr std::size_t depthFrameBytes = depthFramePhaseOffset + pixelCount * sizeof(std::uint16_t);

/// Makes a node's frame from what the device delivered: a raw frame, or planes of depth and, maybe, confidence.
/// \param frame depthFrameBytes bytes at any address
/// \return false for bytes that are neither
[[nodiscard]] bool makeDepthFrame(const std::uint8_t* delivered, std::size_t size, std::uint8_t* frame);

} // namespace Zentara::Cameras
