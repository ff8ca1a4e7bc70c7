#pragma once

#include <cstdint>

namespace Zentara::Simulated {

/// What the simulated microphones hear: a steady tone on each channel, 440 Hz left and 660 Hz right.
/// The sample at a position is always the same, so blocks join without a click and lost ones leave no trace in
/// those after them. Has no state: safe on any thread.
class Tone final {
public:
    static constexpr int leftHertz = 440;
    static constexpr int rightHertz = 660;

    /// Writes interleaved samples, left first.
    /// \param first position of the first sample since the stream began, at audioSampleRate.
    /// \param count samples per channel to write; `samples` holds audioChannels times as many.
    /// \param level 0 for silence to 1 for full scale; values outside are taken as the nearer end.
    static void fill(std::uint64_t first, int count, float level, std::int16_t* samples) noexcept;
};

} // namespace Zentara::Simulated
