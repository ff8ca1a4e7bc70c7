#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <zentara/host/failure.h>
#include <zentara/host/stream.h>
#include <zentara/utils/condition.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>

#include "host/streams/frame_draft.h"
#include "host/streams/frame_gaps.h"
#include "host/streams/frame_memory.h"
#include "host/streams/frame_queue.h"
#include "host/streams/stream_source.h"
#include "host/streams/warmth.h"

namespace Zentara::Host {

/// What a stream and its reading thread share; lives as long as the one that goes last. The thread alone reads the
/// source; starting, stopping, closing and opening it again are the hand's work, with a limit each.
class Stream::Core final : public std::enable_shared_from_this<Stream::Core> {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// Opens the source. \throws Failure
    Core(StreamSetup setup, const StreamOptions& wanted);
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    // The operations of the stream.
    void start();
    [[nodiscard]] std::optional<Frame> take(Milliseconds limit, bool newest, const GoOn& goOn);
    [[nodiscard]] std::optional<Frame> poll();
    void wake(std::shared_ptr<Utils::Threading::Signal> signal);
    void stop();
    [[nodiscard]] const StreamInfo& info() const noexcept { return context->info; }
    [[nodiscard]] const std::string& label() const noexcept { return name; }
    [[nodiscard]] State state() const noexcept;
    [[nodiscard]] StreamCounts counts() const noexcept;
    [[nodiscard]] std::optional<Failure> failure() const;
    [[nodiscard]] std::string hangsIn() const;
    [[nodiscard]] std::string sharing() const;

    /// Stops it. \return what was thrown
    [[nodiscard]] std::optional<Failure> tryStop() noexcept;
    /// Tells that stopping it failed, for a destructor.
    void tellOf(const Failure& failure) const noexcept;
    /// Stops, tells what did not come back, and lets go of it all.
    static void end(std::shared_ptr<Core> core) noexcept;

private:
    using Source = std::shared_ptr<StreamSource>;
    using Moment = std::chrono::steady_clock::time_point;

    /// Keeps the memory of frames for the next ones while it lives.
    struct MemoryUser {
        MemoryUser() { FrameMemory::instance().streamOpens(); }
        ~MemoryUser() { FrameMemory::instance().streamEnds(); }
        MemoryUser(const MemoryUser&) = delete;
        MemoryUser& operator=(const MemoryUser&) = delete;
    };

    // The reading thread's.
    void run();
    [[nodiscard]] std::optional<Failure> readUnits();
    void readFrom(const Source& from);
    [[nodiscard]] bool makeDraft();
    void makeRoom(int length);
    [[nodiscard]] bool deliver(int length, std::int64_t micros, std::uint64_t missed);
    void tellRecorded(const StreamSource::Recorded* told);
    [[nodiscard]] bool awaitReturn(const Failure& why);
    [[nodiscard]] bool comeBack();
    [[nodiscard]] bool giveBack(Source gone);
    [[nodiscard]] Source endReading(const std::optional<Failure>& why);
    [[nodiscard]] bool isHalted() const;

    [[nodiscard]] Source launch();
    [[nodiscard]] bool wait(Utils::Threading::Condition& condition, Moment end) ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::optional<Frame> fetch(bool newest) ZENTARA_REQUIRES(lock);
    [[nodiscard]] Failure silence(Milliseconds limit) const ZENTARA_REQUIRES(lock);
    [[nodiscard]] Failure shortage() const ZENTARA_REQUIRES(lock);
    void setState(State next) ZENTARA_REQUIRES(lock);
    void announce() ZENTARA_REQUIRES(lock);
    [[nodiscard]] bool waitForReader(Moment end);
    [[nodiscard]] Source takeSource() ZENTARA_REQUIRES(lock);

    const MemoryUser memory; ///< first: it goes after all frames
    const StreamOptions options;
    const std::function<Source()> open;
    const std::string opening; ///< what open() does, for messages
    const Note note;
    const Milliseconds mostTime; ///< for opening, and for starting
    const std::shared_ptr<Hand> hand;
    std::string name;                             ///< this and the next two never change once it is open
    std::shared_ptr<const StreamContext> context; ///< not null
    std::shared_ptr<Warmth> warmth;               ///< null where nobody needs temperatures

    // The reading thread's alone.
    FrameGaps gaps;
    FrameDraft draft;
    std::size_t unitBytes = 0; ///< what a unit takes, as far as is known
    bool isFirstAfterReturn = false;

    mutable Utils::Threading::Mutex lock;
    Utils::Threading::Condition arrived{&lock}; ///< a frame, or the end of waiting for one
    Utils::Threading::Condition changed{&lock}; ///< of the state, or of the reading
    State condition ZENTARA_GUARDED_BY(lock) = State::Waiting;
    bool isStarting ZENTARA_GUARDED_BY(lock) = false; ///< once; whoever comes later has nothing to do
    bool isReading ZENTARA_GUARDED_BY(lock) = false;  ///< the thread runs
    bool isAbandoned ZENTARA_GUARDED_BY(lock) =
        false; ///< nobody waits for the thread any more: it gives the source back
    bool isStarved ZENTARA_GUARDED_BY(lock) = false; ///< there is no memory for another frame
    Source source ZENTARA_GUARDED_BY(lock);          ///< null while it is away, and once it was closed
    std::string shared ZENTARA_GUARDED_BY(lock);     ///< what the last source that is gone said of sharing
    std::optional<Failure> trouble ZENTARA_GUARDED_BY(lock); ///< set in Away, Unplugged and Failed
    FrameQueue queue ZENTARA_GUARDED_BY(lock);               ///< empty in Stopped
    StreamCounts numbers ZENTARA_GUARDED_BY(lock);
    std::shared_ptr<Utils::Threading::Signal> listener ZENTARA_GUARDED_BY(lock); ///< may be null
};

} // namespace Zentara::Host
