#include "plugins/simulated/nodes/depth_frame.h"

#include <cstring>
#include <vector>

#include "plugins/simulated/raw_frame.h"

namespace Zentara::Simulated {
namespace {

constexpr std::size_t planeBytes = pixelCount * sizeof(std::uint16_t);

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

} // namespace Zentara::Simulated
