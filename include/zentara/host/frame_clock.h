#pragma once

#include <cstdint>

#include <zentara/host/export.h>

namespace Zentara::Host {

class Frame;

/// From the clock of a stream's device to the host's monotonic one. A device that uses that, that is whose first frame
/// arrives within a second after its time, is believed; the times of another one are shifted by the least delay that was
/// seen. Of a recording that plays, times are those of its playing. One for each stream. A plain value. Separate.
class ZENTARA_HOST_API FrameClock {
public:
    /// When the frame was taken, in microseconds of the host's monotonic clock (`Utils::Clock`).
    /// \param frame the next one of the stream; those before it may be missing
    [[nodiscard]] std::int64_t timeOf(const Frame& frame) noexcept;

private:
    bool isFirst = true;
    bool isForeign = false;      ///< the device has a clock of its own
    std::int64_t leastDelay = 0; ///< from a frame's time to its arrival, in microseconds
};

} // namespace Zentara::Host
