#include "host/streams/stream_core.h"

#include <algorithm>
#include <limits>
#include <thread>
#include <utility>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>

#include "host/attempt.h"
#include "host/cameras/hand.h"
#include "host/streams/bounded_limit.h"
#include "host/streams/silence.h"
#include "host/tell.h"

namespace Zentara::Host {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Utils::Format;
using Utils::Threading::AutoLock;
using namespace std::chrono_literals;

namespace {

constexpr milliseconds stopLimit = 2s;
constexpr milliseconds askEvery{100};
constexpr milliseconds returnPause = 300ms; // longer than an enumerator takes to see a removal
constexpr milliseconds memoryPause = 10ms;
constexpr milliseconds failurePause = 5ms;
constexpr std::size_t mostPlaces = 65'536; ///< of a queue
constexpr std::size_t mostUnitBytes = std::size_t{1} << 26;

milliseconds leftUntil(steady_clock::time_point end) {
    return std::max(milliseconds(0), std::chrono::ceil<milliseconds>(end - steady_clock::now()));
}

/// What is being handled, as a Failure. \param what was attempted
Failure failureNow(const std::string& what) {
    try {
        rethrowAsFailure(what);
    } catch (const Failure& failure) {
        return failure;
    }
}

/// Whether the correction of depth depends on how warm the camera is.
bool needsTemperatures(const StreamInfo& info) {
    const ModeCorrections* const mode = correctionsOf(info);
    return info.mode.kind == Kind::Depth && mode != nullptr &&
           mode->temperature != ModeCorrections::Temperature::None;
}

/// The first frame is to have temperatures already. \param warmth null where nobody needs them
void begin(StreamSource& source, Warmth* warmth) {
    source.start();
    if (warmth != nullptr)
        warmth->ask(source);
}

} // namespace

Stream::Core::Core(StreamSetup setup, const StreamOptions& wanted)
    : options(wanted), open(std::move(setup.open)), opening(std::move(setup.what)), note(setup.note),
      mostTime(setup.limit), hand(setup.hand ? std::move(setup.hand) : std::make_shared<Hand>(opening, note)),
      gaps(1), queue(std::clamp<std::size_t>(wanted.queue, 1, mostPlaces)) {
    if (wanted.queue == 0 || wanted.queue > mostPlaces)
        throw Failure(Failure::Usage, "cannot " + opening,
                      Format("a queue has room for 1 to % frames, not for %") % mostPlaces % wanted.queue);
    const Utils::LogAreaScope scope(Utils::LogArea_STREAMS);
    source = hand->step(mostTime, opening, [way = open] { return way(); });
    name = source->label();
    context = std::make_shared<const StreamContext>(source->info());
    gaps = FrameGaps(context->info.mode.rate);
    unitBytes = std::max<std::size_t>(1, source->usualBytes());
    if (needsTemperatures(context->info))
        warmth = std::make_shared<Warmth>();
}

Stream::State Stream::Core::state() const noexcept {
    AutoLock hold(lock);
    return condition;
}

StreamCounts Stream::Core::counts() const noexcept {
    AutoLock hold(lock);
    return numbers;
}

std::optional<Failure> Stream::Core::failure() const {
    AutoLock hold(lock);
    const bool isTold =
        condition == State::Away || condition == State::Unplugged || condition == State::Failed;
    return isTold ? trouble : std::nullopt;
}

std::string Stream::Core::hangsIn() const {
    {
        AutoLock hold(lock);
        if (isAbandoned && isReading)
            return "read from " + name;
    }
    return hand->hangsIn();
}

std::string Stream::Core::sharing() const {
    AutoLock hold(lock);
    return source ? source->sharing() : shared;
}

bool Stream::Core::isHalted() const { return state() == State::Stopped; }

void Stream::Core::setState(State next) {
    condition = next;
    changed.notifyAll();
    announce();
}

bool Stream::Core::wait(Utils::Threading::Condition& which, Moment end) {
    const auto left = leftUntil(end).count();
    if (left <= 0)
        return false;
    // The longest single wait has 32 bits, less one; the caller comes again.
    which.timedWait(static_cast<unsigned long>(std::min<long long>(left, 1'000'000)));
    return true;
}

// Starting and stopping ---------------------------------------------------------------------------------------------

void Stream::Core::start() {
    const Utils::LogAreaScope scope(Utils::LogArea_STREAMS);
    const Source own = launch();
    if (!own)
        return;
    const std::string what = Format("stream % from %") % context->info.mode.name % name;
    try {
        hand->step(mostTime, what, [own, asked = warmth] { begin(*own, asked.get()); });
        AutoLock hold(lock);
        if (condition == State::Stopped)
            return;
        std::thread([self = shared_from_this()] { self->run(); }).detach();
        isReading = true;
        setState(State::Streaming);
    } catch (...) {
        const Failure failure = failureNow(what);
        AutoLock hold(lock);
        if (condition != State::Stopped) {
            trouble = failure;
            setState(State::Failed);
        }
        throw failure;
    }
}

/// The source, for the one who is to start it.
Stream::Core::Source Stream::Core::launch() {
    AutoLock hold(lock);
    if (condition != State::Waiting || std::exchange(isStarting, true))
        return nullptr;
    return source;
}

/// Waits for the reading thread; false when it does not end in time.
bool Stream::Core::waitForReader(Moment end) {
    AutoLock hold(lock);
    while (isReading && wait(changed, end)) {
    }
    isAbandoned = isReading;
    return !isReading;
}

Stream::Core::Source Stream::Core::takeSource() {
    if (source)
        shared = source->sharing();
    Source taken = std::move(source);
    source = nullptr;
    return taken;
}

void Stream::Core::stop() {
    const Utils::LogAreaScope scope(Utils::LogArea_STREAMS);
    const Moment end = steady_clock::now() + stopLimit;
    const std::string stopping =
        "stop the stream of " + name; // here: once it counts as stopped nobody stops it again
    std::optional<Failure> first;
    Source own;
    State before = State::Stopped;
    {
        AutoLock hold(lock);
        if (condition == State::Stopped)
            return;
        before = condition;
        own = source;
        queue.clear();
        setState(State::Stopped);
    }
    const auto carryOut = [&](const std::string& what, auto work) {
        try {
            hand->step(leftUntil(end), what, std::move(work));
        } catch (...) {
            if (!first)
                first = failureNow(what);
        }
    };
    if (own && before != State::Waiting)
        carryOut(stopping, [own] { own->stop(); });
    own.reset();
    if (!waitForReader(end)) {
        throw before == State::Away
            ? Failure(Failure::TimedOut, "cannot " + stopping, "it is still to " + opening)
            : Failure(Failure::TimedOut,
                      Format("% does not return from reading; % frames had come") % name % counts().received);
    }
    {
        AutoLock hold(lock);
        own = takeSource();
    }
    if (own)
        carryOut("close " + name, [gone = std::move(own)]() mutable {
            gone->close();
            gone.reset();
        });
    // What a device says while it is taken apart is no news once it failed or went.
    if (first && before != State::Failed && before != State::Unplugged)
        throw Failure(*first);
}

std::optional<Failure> Stream::Core::tryStop() noexcept {
    try {
        stop();
    } catch (const Failure& failure) {
        return failure;
    } catch (...) {
        // Not even the text of a failure could be made.
    }
    return std::nullopt;
}

void Stream::Core::tellOf(const Failure& failure) const noexcept {
    tell(note, std::string(failure.what()) +
                   (failure.code() == Failure::TimedOut ? "; it is left behind with its thread" : ""));
}

void Stream::Core::end(std::shared_ptr<Core> core) noexcept {
    if (const std::optional<Failure> failure = core->tryStop())
        core->tellOf(*failure);
    if (core->hand->hangsIn().empty())
        return;
    // A hand that hangs waits for its thread when it goes, and time has been spent already.
    auto* const kept = new (std::nothrow) std::shared_ptr<Core>(std::move(core));
    try {
        if (kept != nullptr)
            std::thread([kept] { delete kept; }).detach();
    } catch (...) {
        // It stays for good, as what it hangs in does.
    }
}

// Fetching ----------------------------------------------------------------------------------------------------------

std::optional<Frame> Stream::Core::take(Milliseconds limit, bool newest, const GoOn& goOn) {
    limit = boundedLimit(limit);
    const Moment end = steady_clock::now() + limit;
    for (;;) {
        {
            const Moment until = goOn ? std::min(end, steady_clock::now() + askEvery) : end;
            AutoLock hold(lock);
            do {
                std::optional<Frame> frame = fetch(newest);
                if (frame || condition == State::Stopped || condition == State::Ended)
                    return frame;
            } while (wait(arrived, until));
            if (until == end)
                throw isStarved && condition == State::Streaming ? shortage() : silence(limit);
        }
        if (!goOn())
            throw Failure(Failure::Interrupted, "the wait for a frame of " + name + " was interrupted");
    }
}

std::optional<Frame> Stream::Core::poll() {
    AutoLock hold(lock);
    return fetch(false);
}

/// What is there now: a frame, or the failure that comes in its place.
std::optional<Frame> Stream::Core::fetch(bool newest) {
    if (!queue.empty()) {
        ++numbers.fetched;
        if (options.keepsAll)
            changed.notifyAll(); // there is room again
        return queue.pop(newest, numbers.droppedByQueue);
    }
    if (condition == State::Failed || condition == State::Unplugged)
        throw Failure(*trouble);
    // Where somebody has let frames go since, the reader will see it soon.
    if (isStarved && condition == State::Streaming && !FrameMemory::instance().hasRoom(unitBytes))
        throw shortage();
    return std::nullopt;
}

Failure Stream::Core::shortage() const {
    return FrameMemory::instance().shortage("take a frame of " + name, unitBytes);
}

void Stream::Core::wake(std::shared_ptr<Utils::Threading::Signal> signal) {
    AutoLock hold(lock);
    listener = std::move(signal);
}

void Stream::Core::announce() {
    arrived.notifyAll();
    if (listener)
        listener->set();
}

Failure Stream::Core::silence(Milliseconds limit) const {
    if (condition == State::Away)
        return Failure(trouble->code(), std::string(trouble->what()) + " and did not come back");
    if (condition == State::Waiting)
        return Failure(Failure::TimedOut,
                       Format("nothing came from % for % s: its stream has not been started") % name %
                           (static_cast<double>(limit.count()) / 1000));
    return silenceOf(name, context->info, limit, numbers.received);
}

// Reading -----------------------------------------------------------------------------------------------------------

void Stream::Core::run() {
    const Utils::LogAreaScope scope(Utils::LogArea_STREAMS);
    for (;;) {
        const std::optional<Failure> why = readUnits();
        if (why && why->code() == Failure::NoDevice && options.awaitReturn && awaitReturn(*why))
            continue;
        draft = FrameDraft();
        const State end =
            !why ? State::Ended : (why->code() == Failure::NoDevice ? State::Unplugged : State::Failed);
        AutoLock hold(lock);
        if (condition != State::Stopped && condition != State::Failed) {
            trouble = why;
            condition = end;
        }
        isReading = false;
        setState(condition);
        return;
    }
}

/// \return why it ended; none when the source said that nothing more comes
std::optional<Failure> Stream::Core::readUnits() {
    Source own;
    {
        AutoLock hold(lock);
        own = source;
    }
    if (!own)
        return std::nullopt; // it is being stopped
    try {
        readFrom(own);
        return std::nullopt;
    } catch (...) {
        return failureNow(Format("read unit % from %") % counts().received % name);
    }
}

void Stream::Core::readFrom(const Source& from) {
    // Whoever looks after each unit whether the stream goes on has the lock for it already.
    for (bool goesOn = !isHalted(); goesOn && makeDraft();) {
        if (warmth)
            warmth->refresh(*hand, from, name);
        std::int64_t micros = 0;
        int length = 0;
        const ReadBufferStatus status =
            from->read(draft.bytes(), static_cast<int>(draft.capacity()), &micros, &length);
        switch (status) {
        case ReadBufferStatus_OK:
            tellRecorded(from->recorded());
            goesOn = deliver(length, micros, from->missedBefore());
            break;
        case ReadBufferStatus_TIMEOUT: // whether it has been silent for too long is for the one to say who waits
            goesOn = !isHalted();
            break;
        case ReadBufferStatus_FAILED: {
            AutoLock hold(lock);
            changed.timedWait(static_cast<unsigned long>(failurePause.count()));
            goesOn = condition != State::Stopped;
            break;
        }
        case ReadBufferStatus_TOO_SMALL:
            makeRoom(length);
            goesOn = !isHalted();
            break;
        case ReadBufferStatus_NOT_STREAMING:
            return;
        case ReadBufferStatus_DISCONNECTED:
            throw Failure(Failure::NoDevice,
                          Format("% was unplugged after % units") % name % counts().received);
        default:
            throw Failure(Failure::Failed,
                          Format("reading from % ended with status %") % name % static_cast<int>(status));
        }
    }
}

/// Memory for the next unit. Where the process may have no more it waits for some; what is queued is given out
/// meanwhile, and then whoever waits is told. \return false once the stream is stopped
bool Stream::Core::makeDraft() {
    if (draft && draft.capacity() >= unitBytes)
        return true;
    draft = FrameDraft();
    for (bool lacked = false;; lacked = true) {
        draft = FrameDraft::tryTake(context, unitBytes);
        if (draft && !lacked)
            return true;
        AutoLock hold(lock);
        isStarved = !draft;
        announce(); // at every try: who waits looks whether there is room
        if (draft || condition == State::Stopped)
            return condition != State::Stopped;
        changed.timedWait(static_cast<unsigned long>(memoryPause.count()));
    }
}

void Stream::Core::makeRoom(int length) {
    const auto wanted = static_cast<std::size_t>(std::max(0, length));
    if (wanted <= draft.capacity() || wanted > mostUnitBytes)
        throw Failure(Failure::Failed, Format("% wants a buffer of % bytes and does not take one of %") %
                                           name % length % draft.capacity());
    unitBytes = wanted;
}

/// What a recording tells of a unit takes the place of what is asked of a camera.
void Stream::Core::tellRecorded(const StreamSource::Recorded* told) {
    FrameData& fields = draft.fields();
    if (told == nullptr) {
        fields.temperatureCount = warmth ? warmth->copyTo(fields.temperatures) : 0;
        return;
    }
    isFirstAfterReturn = isFirstAfterReturn || told->isFirstAfterReturn;
    fields.takenMicros = told->takenMicros;
    fields.temperatureCount = std::min(told->temperatures.size(), fields.temperatures.size());
    std::copy_n(told->temperatures.values.begin(), fields.temperatureCount, fields.temperatures.begin());
}

/// \param missed units before it that were given, but are gone \return false once the stream is stopped
bool Stream::Core::deliver(int length, std::int64_t micros, std::uint64_t missed) {
    if (length < 0 || static_cast<std::size_t>(length) > draft.capacity())
        throw Failure(Failure::Failed,
                      Format("% delivered % bytes into a buffer of %") % name % length % draft.capacity());
    FrameData& fields = draft.fields();
    const bool returned = std::exchange(isFirstAfterReturn, false);
    if (returned)
        gaps.resume();
    // Their times tell of both: what the device has lost, and what was missed.
    const std::uint64_t gap = context->info.mode.kind == Kind::Audio ? 0 : gaps.count(micros);
    fields.droppedBefore = std::max(gap, missed);
    fields.deviceMicros = micros;
    fields.hostMicros = Utils::Clock::nowMicros();
    fields.isFirstAfterReturn = returned;
    {
        AutoLock hold(lock);
        while (options.keepsAll && queue.full() && condition == State::Streaming)
            changed.wait();
        if (condition == State::Stopped)
            return false;
        fields.number = numbers.received++;
        numbers.lostByDevice += fields.droppedBefore - missed;
        numbers.missed += missed;
        numbers.droppedByQueue += queue.push(std::move(draft).finish(static_cast<std::size_t>(length)));
        if (listener)
            listener->set();
    }
    arrived.notify(false); // without the lock, which whoever wakes takes next
    return true;
}

// Away and back -----------------------------------------------------------------------------------------------------

/// \return true once it streams again; false when the stream is stopped, or the device hangs as it is given back
bool Stream::Core::awaitReturn(const Failure& why) {
    Source gone;
    {
        AutoLock hold(lock);
        if (condition == State::Stopped)
            return false;
        trouble = why;
        gone = takeSource();
        setState(State::Away);
    }
    if (!giveBack(std::move(gone)))
        return false;
    for (;;) {
        {
            const Moment again = steady_clock::now() + returnPause;
            AutoLock hold(lock);
            while (condition == State::Away && wait(changed, again)) {
            }
            if (condition != State::Away)
                return false;
        }
        try {
            if (comeBack())
                return true;
        } catch (...) {
            const Failure failure = failureNow(opening);
            AutoLock hold(lock);
            if (condition == State::Away && failure.code() != Failure::NoDevice)
                trouble = failure; // another try may do better
        }
    }
}

/// \return false when the stream was stopped meanwhile; throws while the camera is away
bool Stream::Core::comeBack() {
    Source back = hand->call(mostTime, opening, [way = open] { return way(); });
    try {
        if (back->info().mode != context->info.mode)
            throw Failure(Failure::Failed, name + " came back in another mode");
        hand->call(mostTime, "start " + name + " again",
                   [back, asked = warmth] { begin(*back, asked.get()); });
    } catch (...) {
        static_cast<void>(giveBack(std::move(back)));
        throw;
    }
    {
        AutoLock hold(lock);
        if (condition == State::Away) {
            source = std::move(back);
            trouble.reset();
            ++numbers.absences;
            setState(State::Streaming);
        }
    }
    if (back) { // nobody wants it any more
        static_cast<void>(giveBack(std::move(back)));
        return false;
    }
    isFirstAfterReturn = true;
    return true;
}

/// What the device says to that is no news: it is gone. \return false when it hangs, which is the stream's failure then
bool Stream::Core::giveBack(Source gone) {
    const std::string what = "close " + name;
    try {
        hand->call(stopLimit, what, [parted = std::move(gone)]() mutable {
            const auto quietly = [](auto step) {
                try {
                    step();
                } catch (...) {
                }
            };
            quietly([&] { parted->stop(); });
            quietly([&] { parted->close(); });
            parted.reset();
        });
    } catch (...) {
        const Failure failure = failureNow(what);
        AutoLock hold(lock);
        if (condition == State::Away) {
            trouble = failure;
            setState(State::Failed);
        }
        return false;
    }
    return true;
}

} // namespace Zentara::Host
