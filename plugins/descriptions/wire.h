#pragma once

#include <cstddef>
#include <cstdint>

#include <zentara/parameter_type.h>
#include <zentara/raw_output_mode.h>

/// What both sides of a described camera's wire must know and no description says: the layout of frames and the
/// registers of the time-of-flight controller.
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
/// Raw, instead of the depth frame, once the sensor's raw output is switched on: a header of four little-endian words
/// (signature, raw output mode, modulation frequency in MHz, frame number), then planes as above.
///
///     mode 0   phase
///     mode 1   phase, confidence
///     mode 2   four taps, a quarter turn apart
///
/// A phase of 65536 is one turn, that is half a wavelength of the modulation; 0 stands for no light. A tap shows
/// `tapLevel` without light, and `tapScale` counts a unit of confidence.
///
/// Audio: one block is 10 ms of sound, interleaved signed 16-bit samples in the machine's byte order, left first.
namespace Zentara::Cameras {

inline constexpr int frameWidth = 320;
inline constexpr int frameHeight = 240;
inline constexpr int framesPerSecond = 60;
inline constexpr std::size_t pixelCount = std::size_t{frameWidth} * frameHeight;
inline constexpr std::size_t depthOffset = 0;
inline constexpr std::size_t confidenceOffset = depthOffset + pixelCount * sizeof(std::uint16_t);
inline constexpr std::size_t frameBytes = confidenceOffset + pixelCount * sizeof(std::uint16_t);
inline constexpr std::size_t planeBytes = pixelCount * sizeof(std::uint16_t);
inline constexpr std::size_t colorBytes = pixelCount * 2;
inline constexpr std::uint16_t fullConfidence = 1000;

inline constexpr int audioChannels = 2;
inline constexpr int audioBitsPerSample = 16;
inline constexpr int audioSampleRate = 48000;
inline constexpr int audioBlocksPerSecond = 100;
inline constexpr int audioBlockFrames = audioSampleRate / audioBlocksPerSecond;
inline constexpr std::size_t audioBlockBytes =
    std::size_t{audioBlockFrames} * audioChannels * sizeof(std::int16_t);

inline constexpr std::size_t rawHeaderBytes = 4 * sizeof(std::uint32_t);
inline constexpr std::uint32_t rawSignature = 0x5741525A; // "ZRAW"
inline constexpr std::size_t largestRawFrame = rawHeaderBytes + 4 * planeBytes;
inline constexpr double phaseTurn = 65536;
inline constexpr float tapScale = 16;
inline constexpr float tapLevel = 32768;

struct RawHeader {
    RawOutputMode mode = RawOutputMode_PHASE_AND_CONFIDENCE;
    std::uint32_t megahertz = 0;
    std::uint32_t number = 0; ///< of the frame
};

/// Bytes of a raw frame with its header; 0 for an unknown mode.
[[nodiscard]] constexpr std::size_t rawFrameBytes(RawOutputMode mode) noexcept {
    switch (mode) {
    case RawOutputMode_PHASE:
        return rawHeaderBytes + planeBytes;
    case RawOutputMode_PHASE_AND_CONFIDENCE:
        return rawHeaderBytes + 2 * planeBytes;
    case RawOutputMode_TAPS:
        return rawHeaderBytes + 4 * planeBytes;
    }
    return 0;
}

/// Millimetres of one step of phase.
[[nodiscard]] constexpr double phaseStep(std::uint32_t megahertz) noexcept {
    constexpr double speedOfLight = 299'792'458; // metres a second
    return megahertz == 0 ? 0 : speedOfLight * 1000 / (2e6 * megahertz) / phaseTurn;
}

// Registers of the time-of-flight controller, 16 bits each.
inline constexpr std::uint8_t outputRegister = 0x40;            ///< 0 depth, as after power-on, 1 raw frames
inline constexpr std::uint8_t sensorTemperatureRegister = 0x53; ///< 1/16 degree Celsius
inline constexpr std::uint8_t signatureRegister = 0x6F; ///< `signature` once the parameters have values
inline constexpr std::uint8_t illuminationTemperatureRegister = 0x70; ///< 1/16 degree Celsius
inline constexpr std::uint8_t accelerationRegister = 0x71;            ///< x, then y and z: signed, 1/1000 g
inline constexpr std::uint16_t signature = 0x5A17;

/// The register that holds a parameter's value, as a multiple of its step. The region takes four of them.
[[nodiscard]] constexpr std::uint8_t registerOf(ParameterType number) {
    return number == ParameterType_REGION_OF_INTEREST ? 0x60 : static_cast<std::uint8_t>(0x50 + number);
}

} // namespace Zentara::Cameras
