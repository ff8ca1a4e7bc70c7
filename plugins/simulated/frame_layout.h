#pragma once

#include <cstddef>
#include <cstdint>

/// What the simulated camera's readBuffer operations write, and how large the caller's buffer must be.
///
/// Video: one frame is a plane of depth followed by a plane of confidence, without padding, row after row from
/// the top left pixel. Both planes hold unsigned 16-bit values in the machine's byte order.
///
///     offset 0             depth       320 x 240 x 2 bytes, millimetres; 0: no depth at this pixel
///     offset 153,600       confidence  320 x 240 x 2 bytes, 0 to 1000; 0: no depth at this pixel
///
/// The output format "depth" leaves the second plane away.
///
/// Colour: one frame is 320 x 240 pixels of packed YUY2 (Y0 U Y1 V for two pixels), row after row.
///
/// Audio: one block is 10 ms of sound, interleaved signed 16-bit samples in the machine's byte order, left first.
namespace Zentara::Simulated {

inline constexpr int frameWidth = 320;
inline constexpr int frameHeight = 240;
inline constexpr int framesPerSecond = 60;
inline constexpr std::size_t pixelCount = std::size_t{frameWidth} * frameHeight;
inline constexpr std::size_t depthOffset = 0;
inline constexpr std::size_t confidenceOffset = depthOffset + pixelCount * sizeof(std::uint16_t);
inline constexpr std::size_t frameBytes = confidenceOffset + pixelCount * sizeof(std::uint16_t);
inline constexpr std::size_t colorBytes = pixelCount * 2;
inline constexpr std::uint16_t fullConfidence = 1000;

inline constexpr int audioChannels = 2;
inline constexpr int audioBitsPerSample = 16;
inline constexpr int audioSampleRate = 48000;
inline constexpr int audioBlocksPerSecond = 100;
inline constexpr int audioBlockFrames = audioSampleRate / audioBlocksPerSecond;
inline constexpr std::size_t audioBlockBytes =
    std::size_t{audioBlockFrames} * audioChannels * sizeof(std::int16_t);

} // namespace Zentara::Simulated
