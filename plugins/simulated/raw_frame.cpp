#include "plugins/simulated/raw_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "model/little_endian.h"
#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

using namespace Cameras;

namespace {

constexpr float twoPi = 6.28318531F;

constexpr auto storeWord = Model::storeLittleEndian<std::uint32_t>;

/// Values at any address, plane after plane.
void storeValue(std::uint8_t* planes, std::size_t plane, std::size_t pixel, std::uint16_t value) {
    std::memcpy(planes + plane * planeBytes + pixel * sizeof value, &value, sizeof value);
}

/// It wraps after a turn, as a real one does. A pixel with light never has the phase that stands for none.
std::uint16_t phaseOf(std::uint16_t millimetres, double step) {
    if (millimetres == 0)
        return 0;
    const auto steps = static_cast<std::uint64_t>(std::llround(millimetres / step));
    return std::max<std::uint16_t>(1,
                                   static_cast<std::uint16_t>(steps % static_cast<std::uint64_t>(phaseTurn)));
}

void storeTaps(std::uint8_t* planes, std::size_t pixel, std::uint16_t phase, std::uint16_t confidence) {
    const float amplitude = phase == 0 ? 0.0F : tapScale * static_cast<float>(confidence);
    const float angle = static_cast<float>(phase) * (twoPi / static_cast<float>(phaseTurn));
    const auto across = static_cast<std::int32_t>(std::lround(amplitude * std::cos(angle)));
    const auto along = static_cast<std::int32_t>(std::lround(amplitude * std::sin(angle)));
    const auto level = static_cast<std::int32_t>(tapLevel);
    storeValue(planes, 0, pixel, static_cast<std::uint16_t>(level + across));
    storeValue(planes, 1, pixel, static_cast<std::uint16_t>(level + along));
    storeValue(planes, 2, pixel, static_cast<std::uint16_t>(level - across));
    storeValue(planes, 3, pixel, static_cast<std::uint16_t>(level - along));
}

} // namespace

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

} // namespace Zentara::Simulated
