#include "plugins/simulated/raw_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "plugins/simulated/frame_layout.h"

namespace Zentara::Simulated {
namespace {

constexpr double speedOfLight = 299'792'458; // metres a second
constexpr double turn = 65536;
constexpr float twoPi = 6.28318531F;
constexpr float tapScale = 16;    // counts a unit of confidence
constexpr float tapLevel = 32768; // what a tap shows without light
constexpr std::size_t planeBytes = pixelCount * sizeof(std::uint16_t);

static_assert(largestRawFrame == rawHeaderBytes + 4 * planeBytes);

void storeWord(std::uint8_t* bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t loadWord(const std::uint8_t* bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

/// Values at any address, plane after plane.
void storeValue(std::uint8_t* planes, std::size_t plane, std::size_t pixel, std::uint16_t value) {
    std::memcpy(planes + plane * planeBytes + pixel * sizeof value, &value, sizeof value);
}

std::uint16_t loadValue(const std::uint8_t* planes, std::size_t plane, std::size_t pixel) {
    std::uint16_t value = 0;
    std::memcpy(&value, planes + plane * planeBytes + pixel * sizeof value, sizeof value);
    return value;
}

/// A pixel with light never has the phase that stands for none.
std::uint16_t phaseOf(std::uint16_t millimetres, double step) {
    if (millimetres == 0)
        return 0;
    const auto steps = static_cast<std::uint64_t>(std::llround(millimetres / step));
    return std::max<std::uint16_t>(1, static_cast<std::uint16_t>(steps % static_cast<std::uint64_t>(turn)));
}

void storeTaps(std::uint8_t* planes, std::size_t pixel, std::uint16_t phase, std::uint16_t confidence) {
    const float amplitude = phase == 0 ? 0.0F : tapScale * static_cast<float>(confidence);
    const float angle = static_cast<float>(phase) * (twoPi / static_cast<float>(turn));
    const auto across = static_cast<std::int32_t>(std::lround(amplitude * std::cos(angle)));
    const auto along = static_cast<std::int32_t>(std::lround(amplitude * std::sin(angle)));
    const auto level = static_cast<std::int32_t>(tapLevel);
    storeValue(planes, 0, pixel, static_cast<std::uint16_t>(level + across));
    storeValue(planes, 1, pixel, static_cast<std::uint16_t>(level + along));
    storeValue(planes, 2, pixel, static_cast<std::uint16_t>(level - across));
    storeValue(planes, 3, pixel, static_cast<std::uint16_t>(level - along));
}

struct Measurement {
    std::uint16_t phase;
    std::uint16_t confidence;
};

Measurement fromTaps(const std::uint8_t* planes, std::size_t pixel) {
    const auto difference = [&](std::size_t first, std::size_t second) {
        return static_cast<float>(loadValue(planes, first, pixel)) -
               static_cast<float>(loadValue(planes, second, pixel));
    };
    const float across = difference(0, 2);
    const float along = difference(1, 3);
    const float confidence = std::hypot(across, along) / (2 * tapScale);
    if (confidence < 0.5F)
        return {0, 0};
    const float angle = std::atan2(along, across);
    const float steps = (angle < 0 ? angle + twoPi : angle) * (static_cast<float>(turn) / twoPi);
    const auto phase = static_cast<std::uint16_t>(std::min(65535L, std::lround(steps)));
    return {std::max<std::uint16_t>(1, phase),
            static_cast<std::uint16_t>(std::min<long>(fullConfidence, std::lround(confidence)))};
}

Measurement measurementOf(RawOutputMode mode, const std::uint8_t* planes, std::size_t pixel) {
    if (mode == RawOutputMode_TAPS)
        return fromTaps(planes, pixel);
    const std::uint16_t phase = loadValue(planes, 0, pixel);
    if (phase == 0)
        return {0, 0};
    return {phase, mode == RawOutputMode_PHASE ? fullConfidence : loadValue(planes, 1, pixel)};
}

} // namespace

std::size_t rawFrameBytes(RawOutputMode mode) noexcept {
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

double phaseStep(std::uint32_t megahertz) noexcept {
    return megahertz == 0 ? 0 : speedOfLight * 1000 / (2e6 * megahertz) / turn;
}

void encodeRawFrame(const RawHeader& header, const std::uint16_t* depth, const std::uint16_t* confidence,
                    std::uint8_t* frame) {
    storeWord(frame, rawSignature);
    storeWord(frame + 4, static_cast<std::uint32_t>(header.mode));
    storeWord(frame + 8, header.megahertz);
    storeWord(frame + 12, header.number);
    std::uint8_t* const planes = frame + rawHeaderBytes;
    const double step = phaseStep(header.megahertz);
    for (std::size_t pixel = 0; pixel < pixelCount; ++pixel) {
        const std::uint16_t phase = phaseOf(depth[pixel], step);
        if (header.mode == RawOutputMode_TAPS) {
            storeTaps(planes, pixel, phase, confidence[pixel]);
            continue;
        }
        storeValue(planes, 0, pixel, phase);
        if (header.mode == RawOutputMode_PHASE_AND_CONFIDENCE)
            storeValue(planes, 1, pixel, confidence[pixel]);
    }
}

bool readRawHeader(const std::uint8_t* frame, std::size_t size, RawHeader& header) noexcept {
    if (size < rawHeaderBytes || loadWord(frame) != rawSignature)
        return false;
    const auto mode = static_cast<RawOutputMode>(loadWord(frame + 4));
    if (rawFrameBytes(mode) != size)
        return false;
    header = {mode, loadWord(frame + 8), loadWord(frame + 12)};
    return true;
}

void decodeRawFrame(const RawHeader& header, const std::uint8_t* frame, std::uint16_t* depth,
                    std::uint16_t* confidence, std::uint16_t* phase) {
    const std::uint8_t* const planes = frame + rawHeaderBytes;
    const double step = phaseStep(header.megahertz);
    for (std::size_t pixel = 0; pixel < pixelCount; ++pixel) {
        const Measurement measured = measurementOf(header.mode, planes, pixel);
        phase[pixel] = measured.phase;
        confidence[pixel] = measured.confidence;
        depth[pixel] = static_cast<std::uint16_t>(std::min(65535L, std::lround(measured.phase * step)));
    }
}

} // namespace Zentara::Simulated
