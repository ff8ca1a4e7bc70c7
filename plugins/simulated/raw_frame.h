#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <zentara/raw_output_mode.h>

/// What the time-of-flight sensor sends once its raw output is switched on: a header of four little-endian words
/// (signature, raw output mode, modulation frequency in MHz, frame number), then planes of unsigned 16-bit values
/// in the machine's byte order, as frame_layout.h's.
///
///     mode 0   phase
///     mode 1   phase, confidence
///     mode 2   four taps, a quarter turn apart
///
/// A phase of 65536 is one turn, that is half a wavelength of the modulation; 0 stands for no light.
namespace Zentara::Simulated {

inline constexpr std::size_t rawHeaderBytes = 4 * sizeof(std::uint32_t);
inline constexpr std::uint32_t rawSignature = 0x5741525A; // "ZRAW"

struct RawHeader {
    RawOutputMode mode = RawOutputMode_PHASE_AND_CONFIDENCE;
    std::uint32_t megahertz = 0;
    std::uint32_t number = 0; ///< of the frame
};

/// Bytes of a raw frame with its header; 0 for an unknown mode.
[[nodiscard]] std::size_t rawFrameBytes(RawOutputMode mode) noexcept;
inline constexpr std::size_t largestRawFrame = rawHeaderBytes + 4 * std::size_t{320} * 240 * 2;

/// Millimetres of one step of phase.
[[nodiscard]] double phaseStep(std::uint32_t megahertz) noexcept;

/// Turns depth (millimetres) and confidence (0 to 1000), of pixelCount values each, into a raw frame.
/// \param frame rawFrameBytes(header.mode) bytes
void encodeRawFrame(const RawHeader& header, const std::uint16_t* depth, const std::uint16_t* confidence,
                    std::uint8_t* frame);

/// The header of a raw frame. False for bytes that are none, or not all of one.
[[nodiscard]] bool readRawHeader(const std::uint8_t* frame, std::size_t size, RawHeader& header) noexcept;

/// Turns a raw frame whose header was read into planes of pixelCount values. A mode without confidence gives full
/// confidence where there is a phase.
void decodeRawFrame(const RawHeader& header, const std::uint8_t* frame, std::uint16_t* depth,
                    std::uint16_t* confidence, std::uint16_t* phase);

} // namespace Zentara::Simulated
