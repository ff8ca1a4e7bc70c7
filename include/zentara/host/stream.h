#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <zentara/host/export.h>
#include <zentara/host/failure.h>
#include <zentara/host/frame.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Utils::Threading {
class Signal;
}

namespace Zentara::Host {

class StreamList;
struct StreamSetup;

/// Is asked whether to go on waiting, on the thread that waits, about ten times a second, and holding no lock. False ends
/// the wait; so does what it throws, which passes through.
using GoOn = std::function<bool()>;

/// How a stream is asked for.
struct StreamOptions {
    /// The mode's name, or "320x240", or "320x240@60"; empty: the camera's first one.
    std::string mode{};
    /// How many frames are kept for whoever fetches them, 1 to 65,536. When another one comes, the oldest is dropped and
    /// counted: who is slow gets new frames, not old ones.
    std::size_t queue = 4;
    /// Whether to go on when the camera is back that was pulled out. Otherwise that ends the stream.
    bool awaitReturn = false;
    /// False: the device begins to stream with `start()`, so that several streams can begin together.
    bool started = true;
    /// Whether nothing is dropped: the device is not read while the queue is full. What a camera loses meanwhile counts
    /// as lost by it; a recording waits. For whoever writes all of it down.
    bool keepsAll = false;
    /// Whether to share frames with other programs of this user on this machine that say so as well. The first one has the
    /// camera, and gives its frames; another one that wants them in the same mode reads them, and does not touch the
    /// camera's stream. The first one waits for nobody: who reads too slowly misses frames. When it has ended, or was
    /// killed, the others are told within a second as if the camera had been pulled out; with `awaitReturn` one of them
    /// takes the camera then. Only for cameras that are plugged in.
    bool shared = false;
};

/// What has come and what has not, since the stream began.
struct StreamCounts {
    std::uint64_t received = 0;       ///< frames that the device delivered
    std::uint64_t fetched = 0;        ///< of these, those that `next` and `latest` gave out
    std::uint64_t lostByDevice = 0;   ///< missing between those received, as their times tell; 0 of sound
    std::uint64_t droppedByQueue = 0; ///< received, but dropped because nobody fetched them, or by `latest`
    std::uint64_t absences = 0;       ///< how often the camera was away and came back
    std::uint64_t missed = 0; ///< given by the program that shares them, but gone before they were read

    friend bool operator==(const StreamCounts&, const StreamCounts&) = default;
};

/// The frames of a camera or a recording, as they come. A thread of the stream's own reads the device, straight into the
/// memory of the frames, and keeps them in a queue; whoever fetches them waits for that thread only, and never for the
/// device.
///
///               start()              the source ends (a recording)
///     Waiting ----------> Streaming ------------------------------> Ended
///        |                 |  |  |
///        |                 |  |  | the device fails, or delivers no frames
///        |                 |  |  +--------------------------------> Failed
///        |                 |  |
///        |                 |  | the camera is pulled out, awaitReturn: no
///        |                 |  +-----------------------------------> Unplugged
///        |                 |
///        |   pulled out,   |  ^  it is back: the same node at the same place, or of the same serial number and kind,
///        |   awaitReturn   v  |  in the same mode; tried about three times a second
///        |                 Away
///        |                   |   it hangs while it is given back
///        |                   +------------------------------------> Failed
///        |
///        +---- stop(), the destructor; from every state ----------> Stopped
///
/// Frames that are queued are given out before the end, the failure or the unplugging is told; what is Stopped drops
/// them.
///
/// Safe: one thread may wait in `next` while another one stops the stream; each frame goes to one of several that wait.
/// Only moving, assigning and destroying are separate. What was moved from can only be assigned to and destroyed.
class ZENTARA_HOST_API Stream {
public:
    enum class State { Waiting, Streaming, Away, Ended, Unplugged, Failed, Stopped };

    Stream(Stream&& other) noexcept;
    Stream& operator=(Stream&& other) noexcept;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Stops the stream as `stop` does and lets go of the device, in 2 s at most. What then has not come back is left
    /// behind with its thread and told: to the cameras' note, or to the log. The frames that were given out stay.
    ~Stream();

    /// Begins the stream; does nothing when it has begun. Takes `Cameras::Options::limit` at most, as opening it does.
    /// \throws Failure as the device has it; (TimedOut) when it hangs. The stream is Failed then
    void start();

    /// The next frame, in order.
    /// \param limit how long to wait for one; 0 only looks
    /// \return nothing at the end: the recording is over, the device has ended its stream, or `stop` was called
    /// \throws Failure (TimedOut) when none came within the limit: the camera is silent, or slower than that
    /// \throws Failure (NoDevice) when the camera was pulled out; with `awaitReturn` when it did not come back within the
    ///         limit
    /// \throws Failure (Failed) while the frames of the process take all the memory they may
    /// \throws Failure with the code of what the device failed with; again at every call
    /// \param goOn may end the wait: Failure (Interrupted)
    [[nodiscard]] std::optional<Frame> next(std::chrono::milliseconds limit, const GoOn& goOn = {});

    /// The frame that came last, and drops those before it. Otherwise as `next`: it waits when there is none.
    [[nodiscard]] std::optional<Frame> latest(std::chrono::milliseconds limit, const GoOn& goOn = {});

    /// The next frame if there is one; waits for nothing.
    /// \return nothing when none has come, and at the end: state() tells that apart, asked before this, for a last frame
    ///         may come in between
    /// \throws Failure as next() does, but for silence and absence
    [[nodiscard]] std::optional<Frame> poll();

    /// Whom to wake when a frame has come, or the end, by setting it: who waits for several streams at once polls them
    /// then. One at a time; null for nobody.
    void wake(std::shared_ptr<Utils::Threading::Signal> signal);

    /// Ends the stream and drops what is queued. Whoever waits in `next` is woken at once; the call itself takes as long
    /// as the device needs to end, 2 s at most. Does nothing when it was called before.
    /// \throws Failure as the device has it; (TimedOut) when it hangs. The stream is Stopped nevertheless
    void stop();

    /// What belongs to its frames. Lives as long as the stream.
    [[nodiscard]] const StreamInfo& info() const noexcept;

    /// What to call it in a message: "ZS570 depth SIM0570".
    [[nodiscard]] const std::string& label() const noexcept;

    [[nodiscard]] State state() const noexcept;
    [[nodiscard]] StreamCounts counts() const noexcept;

    /// Of a stream that is shared, for people: "the frames of process 4711", "its own frames, which it gives to others",
    /// or why it cannot give them. Empty for others, and until it has begun.
    [[nodiscard]] std::string sharing() const;

    /// Why it is Away, Unplugged or Failed; nothing in the other states.
    [[nodiscard]] std::optional<Failure> trouble() const;

    /// What has not come back within its limit, and is left behind: "read from ZS570 depth SIM0570"; empty when nothing
    /// hangs. A program that ends meanwhile had better leave by std::_Exit: what is left behind may outlive its objects.
    [[nodiscard]] std::string hangsIn() const;

private:
    friend class StreamList;
    friend Stream openStream(StreamSetup setup, const StreamOptions& options);
    class Core;
    explicit Stream(std::shared_ptr<Core> made) noexcept;

    std::shared_ptr<Core> core; ///< the reading thread's as well
};

} // namespace Zentara::Host
