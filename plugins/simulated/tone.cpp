#include "plugins/simulated/tone.h"

#include <algorithm>
#include <cmath>

#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

/// The phase is reduced in whole samples first, so it stays exact however long the stream runs.
std::int16_t sampleOf(std::uint64_t position, int hertz, float amplitude) noexcept {
    const std::uint64_t cycle = position * static_cast<std::uint64_t>(hertz) % audioSampleRate;
    const float phase = 2.0F * 3.14159265F * static_cast<float>(cycle) / audioSampleRate;
    return static_cast<std::int16_t>(std::lround(amplitude * std::sin(phase)));
}

} // namespace

void Tone::fill(std::uint64_t first, int count, float level, std::int16_t* samples) noexcept {
    // Written so that a level that is not a number is silence.
    const float amplitude = level > 0.0F ? 32767.0F * std::min(level, 1.0F) : 0.0F;
    for (int index = 0; index < count; ++index) {
        const std::uint64_t position = first + static_cast<std::uint64_t>(index);
        samples[audioChannels * index] = sampleOf(position, leftHertz, amplitude);
        samples[audioChannels * index + 1] = sampleOf(position, rightHertz, amplitude);
    }
}

} // namespace Zentara::Simulated
