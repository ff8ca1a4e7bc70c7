#pragma once

#include <cmath>
#include <cstdint>

#include <zentara/host/export.h>
#include <zentara/host/frame.h>
#include <zentara/host/mode.h>

namespace Zentara::Host {

struct StreamInfo;

/// What came of one stream, frame by frame: how many, how fast and how greatest away; of sound how many samples. A plain
/// value. Separate.
class ZENTARA_HOST_API StreamStatistics {
public:
    explicit StreamStatistics(const StreamInfo& stream);

    /// Counts a frame of that stream. \throws Failure, and counts nothing, when it is too short to hold its depth
    void add(const Frame& frame);

    /// Frames, of sound blocks.
    [[nodiscard]] std::uint64_t frames() const noexcept { return taken; }
    /// Of sound, a channel.
    [[nodiscard]] std::uint64_t samples() const noexcept { return heard; }
    /// Frames that are missing between those, as they say themselves.
    [[nodiscard]] std::uint64_t dropped() const noexcept { return missing; }

    /// From the first frame to the last by the device's clock, without absences and gaps of more than an hour.
    [[nodiscard]] double seconds() const noexcept;
    /// In that time; 0 below two frames.
    [[nodiscard]] double framesPerSecond() const noexcept;

    /// Of the depths of all frames, along axis or ray as delivered, in millimetres; 0 when there is none.
    [[nodiscard]] long nearestMillimetres() const noexcept {
        return greatest == 0 ? 0 : std::lround(least * unit);
    }
    [[nodiscard]] long farthestMillimetres() const noexcept { return std::lround(greatest * unit); }
    /// Share of the pixels of all frames that had no depth, 0 to 1.
    [[nodiscard]] double withoutDepth() const noexcept;

private:
    Kind kind;
    double unit;              ///< millimetres of a depth value
    std::uint64_t blockBytes; ///< of a sample of all channels
    std::uint64_t taken = 0;
    std::uint64_t heard = 0;
    std::uint64_t missing = 0;
    std::uint64_t intervals = 0; ///< between frames that followed one another
    std::int64_t total = 0;      ///< microseconds of these
    std::int64_t last = 0;       ///< the last frame's time
    std::uint64_t pixels = 0;
    std::uint64_t zeros = 0;     ///< of these, without depth
    std::uint16_t least = 65535; ///< as delivered, as the next
    std::uint16_t greatest = 0;
};

} // namespace Zentara::Host
