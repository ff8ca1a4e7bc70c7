#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <ostream>

#include <zentara/host/frame.h>
#include <zentara/host/stream_info.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// What came of one stream: how many frames, how fast, how far away; of sound how many samples. Separate.
class StreamTally final {
public:
    /// \param most how many frames are to come, of sound samples a channel; 0 for all there are
    StreamTally(const Host::StreamInfo& stream, std::uint64_t most);

    /// \throws Failure, and counts nothing, for a depth frame that is too short to hold its depth
    void count(const Host::Frame& frame);

    [[nodiscard]] bool full() const noexcept { return wanted != 0 && taken >= wanted; }
    [[nodiscard]] bool empty() const noexcept { return taken == 0; }

    /// In lines of text, and as fields of a stream's JSON object.
    void print(std::ostream& out) const;
    void fill(Json& stream) const;

private:
    void measure(const Host::Frame& frame);
    [[nodiscard]] double seconds() const noexcept;
    /// Frames a second from the first frame to the last, without absences; 0 below two frames.
    [[nodiscard]] double rate() const noexcept;
    /// Of the depths seen, in millimetres; 0 when there is none.
    [[nodiscard]] long nearest() const noexcept { return high == 0 ? 0 : std::lround(low * unit); }
    [[nodiscard]] long farthest() const noexcept { return std::lround(high * unit); }
    /// Share of the pixels of all frames that had no depth.
    [[nodiscard]] double blind() const noexcept;

    const Host::Mode mode;
    const double unit; ///< millimetres of a depth value
    const std::uint64_t wanted;
    std::uint64_t taken = 0; ///< frames, or samples a channel
    std::uint64_t dropped = 0;
    std::uint64_t intervals = 0;
    std::int64_t last = 0;  ///< the last frame's time
    std::int64_t total = 0; ///< microseconds of all intervals
    std::uint64_t pixels = 0;
    std::uint64_t zeros = 0;
    std::uint16_t low = 0xFFFF;
    std::uint16_t high = 0;
    std::optional<Host::Frame> lastDepth;
};

} // namespace Zentara::Tool
