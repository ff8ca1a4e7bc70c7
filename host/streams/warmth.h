#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <zentara/sensor_value_array.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

#include "host/streams/frame_data.h"

namespace Zentara::Host {

class Hand;
class StreamSource;

/// How warm a camera is while it streams. A node takes one call at a time beside the reading of frames, so it is asked where
/// all other calls are made, and nobody waits for its answer. Safe; shared with the hand that asks.
class Warmth final : public std::enable_shared_from_this<Warmth> {
public:
    using Readings = std::array<SensorValue, FrameData::mostTemperatures>;

    /// Asks, on the thread on which the source's calls are made. Sensors that cannot be read are no reason to end a stream:
    /// its frames tell that they have no temperature.
    void ask(StreamSource& source) noexcept;

    /// Has the hand ask when the last answer is 5 s old. One that does not come until the next time counts no more.
    void refresh(const Hand& hand, const std::shared_ptr<StreamSource>& source, const std::string& name);

    /// \return how many there are
    std::size_t copyTo(Readings& readings) const;

private:
    mutable Utils::Threading::Mutex lock;
    Readings last ZENTARA_GUARDED_BY(lock){};
    std::size_t count ZENTARA_GUARDED_BY(lock) = 0;
    bool isAsking ZENTARA_GUARDED_BY(lock) = false;
    std::int64_t askedAt ZENTARA_GUARDED_BY(lock) = 0;
};

} // namespace Zentara::Host
