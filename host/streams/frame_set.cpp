#include <zentara/host/frame_set.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <deque>
#include <limits>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/host/frame_clock.h>
#include <zentara/host/lens.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>
#include <zentara/utils/signal.h>

#include "host/streams/bounded_limit.h"
#include "host/streams/stream_list.h"

namespace Zentara::Host {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Utils::Format;

namespace {

constexpr std::int64_t microsOfSecond = 1'000'000;
constexpr std::size_t mostPending = 512; ///< of one stream; beyond it the oldest belong to no set
constexpr milliseconds lookPause = std::chrono::milliseconds(20);
constexpr milliseconds askPause = std::chrono::milliseconds(100);

std::string milliseconds1(std::int64_t micros) {
    return Format("% ms") % (std::round(static_cast<double>(micros) / 100) / 10);
}

/// A frame that is in no set yet.
struct Pending {
    Frame frame;
    std::int64_t begin; ///< on the host's clock, as the next
    std::int64_t end;   ///< of a picture the same as `begin`
};

/// One of the streams with what has come from it.
struct Lane {
    explicit Lane(Stream given) : stream(std::move(given)) {
        const Mode& mode = stream.info().mode;
        kind = mode.kind;
        period = microsOfSecond / std::max<std::int64_t>(1, mode.rate);
    }

    void take(Frame frame) {
        const std::int64_t begin = clock.timeOf(frame);
        const std::int64_t length = kind == Kind::Audio ? spanOf(frame) : 0;
        if (frames.size() >= mostPending)
            frames.pop_front();
        frames.push_back({std::move(frame), begin, begin + length});
    }

    [[nodiscard]] std::int64_t spanOf(const Frame& frame) const {
        const Mode& mode = stream.info().mode;
        const std::int64_t bytes = std::max(1, mode.channels) * std::max(1, (mode.bitsPerSample + 7) / 8);
        return static_cast<std::int64_t>(frame.bytes().size()) / bytes * microsOfSecond /
               std::max<std::int64_t>(1, mode.rate);
    }

    /// Whether nothing can come any more that is taken before that time.
    [[nodiscard]] bool isPast(std::int64_t time) const {
        return hasEnded || (!frames.empty() && frames.back().end >= time);
    }

    Stream stream;
    Kind kind = Kind::Depth;
    std::int64_t period = 0; ///< of pictures; of sound, of one sample
    std::deque<Pending> frames;
    FrameClock clock;
    bool hasEnded = false;
};

} // namespace

struct FrameSets::Impl {
    Impl(std::vector<Stream> streams, Options wanted);
    ~Impl() { running.end(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    [[nodiscard]] Lane* find(Kind kind);
    void gather();
    [[nodiscard]] std::optional<FrameSet> make();
    [[nodiscard]] bool isDue(const Lane& lane, std::int64_t until, std::int64_t arrived) const;
    [[nodiscard]] std::optional<FrameSet> makeWithoutLeader();
    [[nodiscard]] bool leavesOut() const;
    [[nodiscard]] bool hasEnded() const;
    [[nodiscard]] bool hasPictures() const {
        return !leader->frames.empty() || (other && !other->frames.empty());
    }
    void fillSound(FrameSet& set);
    void place(FrameSet& set, Lane& lane, std::size_t index);
    [[nodiscard]] std::size_t nearest(const Lane& lane, std::int64_t time) const;
    [[nodiscard]] std::string lacks(const Lane& lane) const;

    const Options options;
    std::vector<Lane> lanes;
    StreamList running;               ///< those of the lanes
    Lane* leader = nullptr;           ///< the slower picture stream
    Lane* other = nullptr;            ///< the other picture stream; may be null
    Lane* sound = nullptr;            ///< may be null
    std::optional<Failure> trouble;   ///< of the first stream that failed
    std::optional<std::int64_t> last; ///< when the set before began
    const std::shared_ptr<Utils::Threading::Signal> arrivals = std::make_shared<Utils::Threading::Signal>();
    std::atomic<bool> isStopped{false};
};

FrameSets::Impl::Impl(std::vector<Stream> streams, Options wanted) : options(wanted) {
    for (Stream& stream : streams) {
        if (find(stream.info().mode.kind) != nullptr)
            throw Failure(Failure::Usage, "cannot put together the frames of " + stream.label(),
                          "there is another stream of its kind");
        lanes.emplace_back(std::move(stream));
    }
    Lane* const depth = find(Kind::Depth);
    Lane* const color = find(Kind::Color);
    sound = find(Kind::Audio);
    if (depth == nullptr && color == nullptr)
        throw Failure(Failure::Usage, "cannot make sets of frames", "there is no picture stream");
    const bool colorLeads = depth == nullptr || (color != nullptr && color->period > depth->period);
    leader = colorLeads ? color : depth;
    other = colorLeads ? depth : color;
    for (Lane& lane : lanes) {
        running.add(lane.stream);
        lane.stream.wake(arrivals);
    }
    for (Lane& lane : lanes)
        lane.stream.start();
}

Lane* FrameSets::Impl::find(Kind kind) {
    const auto found =
        std::find_if(lanes.begin(), lanes.end(), [kind](const Lane& lane) { return lane.kind == kind; });
    return found == lanes.end() ? nullptr : &*found;
}

/// Takes all that has come.
void FrameSets::Impl::gather() {
    for (Lane& lane : lanes) {
        if (lane.hasEnded)
            continue;
        try {
            while (std::optional<Frame> frame = lane.stream.poll())
                lane.take(std::move(*frame));
            const Stream::State state = lane.stream.state();
            if (state != Stream::State::Ended && state != Stream::State::Stopped)
                continue;
            while (std::optional<Frame> frame = lane.stream.poll()) // came before the end was told
                lane.take(std::move(*frame));
            lane.hasEnded = true;
        } catch (const Failure& failure) {
            if (!trouble)
                trouble = failure;
            const Stream::State state = lane.stream.state();
            lane.hasEnded = state == Stream::State::Failed || state == Stream::State::Unplugged;
        }
    }
}

bool FrameSets::Impl::hasEnded() const {
    return std::all_of(lanes.begin(), lanes.end(), [](const Lane& lane) { return lane.hasEnded; });
}

/// Whether a set need not wait any longer for what a lane delivers until that time. \param arrived when its first frame
/// came
bool FrameSets::Impl::isDue(const Lane& lane, std::int64_t until, std::int64_t arrived) const {
    return lane.isPast(until) ||
           Utils::Clock::nowMicros() - arrived >= std::int64_t{options.patience.count()} * 1000;
}

std::size_t FrameSets::Impl::nearest(const Lane& lane, std::int64_t time) const {
    std::size_t best = lane.frames.size();
    std::int64_t least = leader->period / 2;
    for (std::size_t i = 0; i < lane.frames.size(); ++i) {
        const std::int64_t distance = std::abs(lane.frames[i].begin - time);
        if (distance > least)
            continue;
        best = i;
        least = distance;
    }
    return best;
}

std::string FrameSets::Impl::lacks(const Lane& lane) const {
    const std::string name = std::string(kindName(lane.kind)) + ": ";
    return name + (lane.hasEnded && lane.frames.empty()
                       ? "its stream has ended"
                       : "nothing within " + milliseconds1(leader->period / 2));
}

/// Puts a picture into the set; those before it are in none.
void FrameSets::Impl::place(FrameSet& set, Lane& lane, std::size_t index) {
    (lane.kind == Kind::Depth ? set.depth : set.color) = lane.frames[index].frame;
    lane.frames.erase(lane.frames.begin(), lane.frames.begin() + static_cast<std::ptrdiff_t>(index) + 1);
}

void FrameSets::Impl::fillSound(FrameSet& set) {
    if (sound == nullptr)
        return;
    std::int64_t reached = std::numeric_limits<std::int64_t>::min();
    while (!sound->frames.empty() && sound->frames.front().begin < set.endMicros) {
        const Pending& block = sound->frames.front();
        reached = block.end;
        if (last || block.end > set.beginMicros)
            set.audio.push_back(block.frame);
        sound->frames.pop_front();
    }
    if (set.audio.empty())
        set.missing.push_back("audio: " +
                              std::string(sound->hasEnded ? "its stream has ended" : "there is none"));
    else if (reached < set.endMicros && sound->frames.empty())
        set.missing.push_back("audio: it ends " + milliseconds1(set.endMicros - reached) + " early");
}

/// Whether the slower stream has left out the next frame, while the other has one of that time.
bool FrameSets::Impl::leavesOut() const {
    if (!last || other == nullptr || leader->frames.front().begin - *last <= leader->period * 3 / 2)
        return false;
    return nearest(*other, *last + leader->period) < other->frames.size();
}

/// The next set, if it is time for one.
std::optional<FrameSet> FrameSets::Impl::make() {
    if (leader->frames.empty() || leavesOut())
        return makeWithoutLeader();
    const Pending first = leader->frames.front();
    const std::int64_t arrived = first.frame.hostMicros();
    if (other != nullptr && !isDue(*other, first.begin, arrived))
        return std::nullopt;
    if (sound != nullptr && !isDue(*sound, first.begin + leader->period, arrived))
        return std::nullopt;
    FrameSet set;
    set.beginMicros = first.begin;
    set.endMicros = first.begin + leader->period;
    if (other != nullptr) {
        const std::size_t index = nearest(*other, first.begin);
        if (index < other->frames.size())
            place(set, *other, index);
        else
            set.missing.push_back(lacks(*other));
    }
    place(set, *leader, 0);
    fillSound(set);
    last = set.beginMicros;
    return set;
}

/// The slower stream has left out a frame, or has ended, while the other goes on.
std::optional<FrameSet> FrameSets::Impl::makeWithoutLeader() {
    if (other == nullptr || other->frames.empty())
        return std::nullopt;
    // Where the missing frame would have been taken; before the first set, where the other stream begins.
    const std::int64_t due = last ? *last + leader->period : other->frames.front().begin;
    while (!other->frames.empty() && other->frames.front().begin < due - leader->period / 2)
        other->frames.pop_front();
    if (other->frames.empty())
        return std::nullopt;
    const std::size_t near = nearest(*other, due);
    const std::size_t index = near < other->frames.size() ? near : 0;
    const Pending first = other->frames[index];
    if (!isDue(*leader, first.begin + leader->period / 2, first.frame.hostMicros()))
        return std::nullopt;
    FrameSet set;
    set.beginMicros = first.begin;
    set.endMicros = first.begin + leader->period;
    set.missing.push_back(lacks(*leader));
    place(set, *other, index);
    fillSound(set);
    last = set.beginMicros;
    return set;
}

FrameSets::FrameSets(std::vector<Stream> streams) : FrameSets(std::move(streams), Options()) {}
FrameSets::FrameSets(std::vector<Stream> streams, Options options)
    : impl(std::make_unique<Impl>(std::move(streams), options)) {}
FrameSets::FrameSets(FrameSets&& other) noexcept = default;
FrameSets& FrameSets::operator=(FrameSets&& other) noexcept = default;
FrameSets::~FrameSets() = default;

std::optional<FrameSet> FrameSets::next(milliseconds limit, const GoOn& goOn) {
    limit = boundedLimit(limit);
    const auto end = steady_clock::now() + limit;
    auto asked = steady_clock::now();
    for (;;) {
        if (goOn && steady_clock::now() - asked >= askPause) {
            asked = steady_clock::now();
            if (!goOn())
                throw Failure(Failure::Interrupted, "the wait for a set of frames of " +
                                                        impl->leader->stream.label() + " was interrupted");
        }
        if (impl->isStopped)
            return std::nullopt;
        impl->gather();
        if (std::optional<FrameSet> set = impl->make())
            return set;
        if (impl->trouble && !impl->hasPictures())
            throw Failure(*std::exchange(impl->trouble, std::nullopt));
        if (impl->hasEnded())
            return std::nullopt;
        const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
        if (left.count() <= 0)
            throw Failure(Failure::TimedOut, Format("no set of frames came from % for % s") %
                                                 impl->leader->stream.label() %
                                                 (static_cast<double>(limit.count()) / 1000));
        impl->arrivals->timedWait(static_cast<unsigned long>(std::min(left, lookPause).count()));
    }
}

void FrameSets::stop() {
    impl->isStopped = true;
    impl->arrivals->set();
    impl->running.stop();
}

const Stream& FrameSets::stream(Kind kind) const {
    const Lane* const lane = impl->find(kind);
    if (lane == nullptr)
        throw Failure(Failure::Usage, Format("there is no % stream among the set's") % kindName(kind));
    return lane->stream;
}

void LastSet::add(const Frame& frame) {
    if (frame.kind() == Kind::Color)
        newest = frame;
    else if (frame.kind() == Kind::Depth)
        depth = frame;
    else
        return;
    const auto isNearer = [this] { return distance(*newest) <= distance(*color); };
    if (newest && (!color || !depth || isNearer()))
        color = newest;
}

/// From when the depth was taken, without a sign; times may be anything.
std::uint64_t LastSet::distance(const Frame& picture) const {
    const std::int64_t own = depth->deviceMicros();
    const std::int64_t other = picture.deviceMicros();
    return own > other ? static_cast<std::uint64_t>(own) - static_cast<std::uint64_t>(other)
                       : static_cast<std::uint64_t>(other) - static_cast<std::uint64_t>(own);
}

FrameSet LastSet::set() const {
    FrameSet made;
    made.depth = depth;
    if (!depth || !color) {
        for (const auto& [picture, kind] : {std::pair(&depth, Kind::Depth), std::pair(&color, Kind::Color)}) {
            if (!*picture)
                made.missing.push_back(std::string(kindName(kind)) + ": there is none");
        }
        return made;
    }
    const std::uint32_t rate = std::max(1U, std::min(depth->info().mode.rate, color->info().mode.rate));
    const std::int64_t period = microsOfSecond / rate;
    made.beginMicros = depth->hostMicros();
    made.endMicros = made.beginMicros + period;
    if (distance(*color) <= static_cast<std::uint64_t>(period / 2))
        made.color = color;
    else
        made.missing.push_back("color: nothing within " + milliseconds1(period / 2));
    return made;
}

namespace {

void paint(PointCloud& cloud, const FrameSet& set) {
    const StreamInfo& info = set.depth->info();
    if (!info.pose)
        throw Failure(Failure::Failed, "cannot colour the depth of " + info.camera.label(),
                      "the pose of its colour camera is not known",
                      "Calibrate the camera, or mend its description.");
    cloud.colorFrom(set.color->rgb(), set.color->lens(), *info.pose);
}

std::string lackOfColor(const FrameSet& set) {
    const auto found = std::find_if(set.missing.begin(), set.missing.end(), [](const std::string& lack) {
        return lack.rfind(kindName(Kind::Color), 0) == 0;
    });
    return found == set.missing.end() ? "color: there is none" : *found;
}

} // namespace

PointCloud cloudOf(const FrameSet& set, const CloudOptions& options) {
    if (!set.depth)
        throw Failure(Failure::Usage, "cannot make a point cloud of a set of frames",
                      "it has no picture of depth");
    PointCloud cloud = set.depth->lens().pointsOf(*set.depth, options);
    try {
        if (set.color)
            paint(cloud, set);
        else
            cloud.leaveUncolored(lackOfColor(set));
    } catch (const Failure& failure) {
        cloud.leaveUncolored(failure.what());
    }
    return cloud;
}

std::vector<std::optional<Color>> colourOf(const FrameSet& set) {
    if (!set.depth || !set.color)
        throw Failure(Failure::Usage, "cannot colour the depth of a set of frames",
                      set.depth ? "it has no picture of colour" : "it has no picture of depth");
    PointCloud cloud = set.depth->lens().pointsOf(*set.depth, {.keepGrid = true});
    paint(cloud, set);
    return {cloud.colors().begin(), cloud.colors().end()};
}

} // namespace Zentara::Host
