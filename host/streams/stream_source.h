#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <zentara/host/note.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_info.h>
#include <zentara/read_buffer_status.h>
#include <zentara/sensor_value_array.h>

namespace Zentara::Host {

class Hand;

/// Where a stream comes from: a camera's node, a bare device or a recording. Open when it has been made. Separate, but
/// read() and what tells of the unit that it gave run on a thread of their own beside the other operations; it has
/// returned, or hangs for ever, before close().
class StreamSource {
public:
    StreamSource() = default;
    StreamSource(const StreamSource&) = delete;
    StreamSource& operator=(const StreamSource&) = delete;
    virtual ~StreamSource() = default;

    /// The same as long as it lives.
    [[nodiscard]] virtual const StreamInfo& info() const = 0;

    /// What to call it in a message.
    [[nodiscard]] virtual std::string label() const = 0;

    /// What all programs on this machine call the hardware that it comes from; empty when only this one can have it.
    [[nodiscard]] virtual std::string hardware() const { return {}; }

    /// About how many bytes a unit has; a guess, for the first buffer.
    [[nodiscard]] virtual std::size_t usualBytes() const = 0;

    /// Begins the stream. Throws what the device throws, as the other operations do.
    virtual void start() = 0;

    /// Waits for the next unit, as a device's `readBuffer` does.
    virtual ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) = 0;

    /// What the camera's sensors read now, for the correction of depth; none where there are none.
    [[nodiscard]] virtual SensorValueArray temperatures() { return {}; }

    /// What a recording tells of a unit beside its time.
    struct Recorded {
        bool isFirstAfterReturn = false;
        /// When it was taken, on the host's clock, as if it played at the pace at which was recorded.
        std::int64_t takenMicros = 0;
        SensorValueArray temperatures;
    };
    /// Of the unit that read() gave last, on the thread that reads; null for what comes from a device.
    [[nodiscard]] virtual const Recorded* recorded() const { return nullptr; }

    /// How many units before the one that read() gave last were given to this process, but are gone, on the thread that
    /// reads; 0 of what comes from a device.
    [[nodiscard]] virtual std::uint64_t missedBefore() const { return 0; }

    /// Whose frames they are, and whether others get them, as Stream::sharing. Safe.
    [[nodiscard]] virtual std::string sharing() const { return {}; }

    /// Ends the stream, which wakes the reader.
    virtual void stop() = 0;

    /// Lets go of what was opened; the destructor does it, too, but keeps the failure to itself.
    virtual void close() = 0;
};

/// What a stream is made of.
struct StreamSetup {
    /// Opens the source, now and when the camera is back; called on the hand's thread. \throws Failure, with NoDevice
    /// while the camera is away
    std::function<std::shared_ptr<StreamSource>()> open;
    std::string what;           ///< open() is about to do, for messages: "open LEFT SIM0570"
    std::shared_ptr<Hand> hand; ///< the camera's; may be null: the stream makes one of its own then
    Note note;                  ///< is told what is left behind
    /// How long opening may take, and starting.
    std::chrono::milliseconds limit{15'000};
};

/// Opens the source and, unless the options say otherwise, starts it.
/// \throws Failure as source and device have it; (Usage) for a queue of 0; (TimedOut) when one hangs
[[nodiscard]] Stream openStream(StreamSetup setup, const StreamOptions& options);

} // namespace Zentara::Host
