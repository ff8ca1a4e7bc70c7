#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <zentara/utils/crc.h>

/// A recording is a file header and chunks: one for each stream, one for each frame, one at the end; between them what
/// a camera's sensors read. Numbers are little-endian. Each CRC is the reflected CRC-32 of polynomial 0xEDB88320,
/// started at 0xFFFFFFFF and not inverted.
namespace Zentara::Host::RecordingFormat {

// File header: magic, version, number of streams, CRC of what comes before it.
inline constexpr std::array<unsigned char, 8> magic{'Z', 'T', 'R', 'E', 'C', 0x0D, 0x0A, 0x1A};
inline constexpr std::uint16_t version = 2;
inline constexpr std::uint16_t oldestVersion = 1;
inline constexpr std::uint16_t mostStreams = 256;
inline constexpr std::size_t fileHeaderBytes = magic.size() + 2 + 2 + 4;

// Chunk: tag, stream, flags, time, length of the payload, CRC of what comes before it; the payload; its CRC.
enum Tag : std::uint32_t {
    Tag_STREAM = 0x4D525453,       // "STRM"
    Tag_FRAME = 0x4D415246,        // "FRAM"
    Tag_TEMPERATURES = 0x504D4554, // "TEMP"
    Tag_END = 0x20444E45,          // "END "
};
/// Of a frame.
enum Flag : std::uint16_t {
    Flag_AFTER_RETURN = 1, ///< the first one after the camera was away
};
inline constexpr std::size_t chunkHeaderBytes = 4 + 2 + 2 + 8 + 4 + 4;
inline constexpr std::size_t checksumBytes = 4;
inline constexpr std::uint32_t mostPayloadBytes = 1U << 26;

[[nodiscard]] inline std::uint32_t checksum(const void* data, std::size_t size) {
    return Utils::Crc32::compute(static_cast<const unsigned char*>(data), static_cast<unsigned>(size),
                                 0xFFFFFFFFU);
}

} // namespace Zentara::Host::RecordingFormat
