#include "plugins/cameras/nodes/depth_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "model/little_endian.h"

namespace Zentara::Cameras {
namespace {

constexpr float twoPi = 6.28318531F;

constexpr auto loadWord = Model::loadLittleEndian<std::uint32_t>;

std::uint16_t loadValue(const std::uint8_t* planes, std::size_t plane, std::size_t pixel) {
    std::uint16_t value = 0;
    std::memcpy(&value, planes + plane * planeBytes + pixel * sizeof value, sizeof value);
    return value;
}

struct Measurement {
    std::uint16_t phase;
    std::uint16_t confidence;
};

/// From four taps a quarter turn apart: opposite ones differ by twice the amplitude times cosine and sine of the phase, and
/// what is not modulated falls out of the differences.
Measurement fromTaps(const std::uint8_t* planes, std::size_t pixel) {
    const auto difference = [&](std::size_t first, std::size_t second) {
        return static_cast<float>(loadValue(planes, first, pixel)) -
               static_cast<float>(loadValue(planes, second, pixel));
    };
    const float across = difference(0, 2);
    const float along = difference(1, 3);
    const float confidence = std::hypot(across, along) / (2 * tapScale);
    if (confidence < 0.5F) // it would be rounded to none
        return {0, 0};
    const float angle = std::atan2(along, across);
    const float steps = (angle < 0 ? angle + twoPi : angle) * (static_cast<float>(phaseTurn) / twoPi);
    // At least 1 below, for 0 stands for no light.
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

void makeFromRaw(const RawHeader& header, const std::uint8_t* delivered, std::uint8_t* frame) {
    std::vector<std::uint16_t> planes(3 * pixelCount);
    decodeRawFrame(header, delivered, planes.data(), planes.data() + pixelCount,
                   planes.data() + 2 * pixelCount);
    std::memcpy(frame, planes.data(), depthFrameBytes);
}

/// Without confidence of its own, a pixel with depth has all of it.
void makeFromDepth(const std::uint8_t* delivered, bool confident, std::uint8_t* frame) {
    std::memcpy(frame, delivered, confident ? 2 * planeBytes : planeBytes);
    std::memset(frame + depthFramePhaseOffset, 0, planeBytes);
    for (std::size_t pixel = 0; !confident && pixel < pixelCount; ++pixel) {
        std::uint16_t depth = 0;
        std::memcpy(&depth, delivered + pixel * sizeof depth, sizeof depth);
        const std::uint16_t confidence = depth == 0 ? std::uint16_t{0} : fullConfidence;
        std::memcpy(frame + confidenceOffset + pixel * sizeof confidence, &confidence, sizeof confidence);
    }
}

} // namespace

bool makeDepthFrame(const std::uint8_t* delivered, std::size_t size, std::uint8_t* frame) {
    RawHeader header;
    if (readRawHeader(delivered, size, header)) {
        makeFromRaw(header, delivered, frame);
        return true;
    }
    if (size != planeBytes && size != 2 * planeBytes)
        return false;
    makeFromDepth(delivered, size == 2 * planeBytes, frame);
    return true;
}

} // namespace Zentara::Cameras
