#pragma once

#include <cstdint>
#include <ostream>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Counts the frames of a stream by their times, and those that are missing between them.
class FrameCounter final {
public:
    /// \param framesWanted how many are to come; 0 for as many as come. \param framesPerSecond nominal, 1 or more
    FrameCounter(std::uint64_t framesWanted, int framesPerSecond);

    /// \param micros when the frame was taken
    void count(std::int64_t micros) noexcept;

    /// The next frame begins anew: its time has nothing to do with the last one's.
    void resume() noexcept { fresh = true; }

    [[nodiscard]] std::uint64_t frames() const noexcept { return taken; }
    [[nodiscard]] bool full() const noexcept { return wanted != 0 && taken >= wanted; }
    [[nodiscard]] std::uint64_t dropped() const noexcept { return lost; }
    /// From the first frame to the last, without the gaps at which the stream began anew.
    [[nodiscard]] double seconds() const noexcept;
    /// Frames a second over that time; 0 below two frames.
    [[nodiscard]] double rate() const noexcept;

    void print(std::ostream& out) const;
    void fill(Json& stream) const;

private:
    const std::uint64_t wanted;
    const int nominal;
    std::uint64_t taken = 0;
    std::uint64_t lost = 0;
    std::uint64_t intervals = 0;
    std::int64_t last = 0;
    std::int64_t total = 0;
    bool fresh = true;
};

/// A number with so many digits after the point.
[[nodiscard]] std::string fixed(double value, int digits);

} // namespace Zentara::Tool
