#include "tools/viewer/camera_feed.h"

#include <algorithm>
#include <utility>

#include <zentara/compression_type.h>
#include <zentara/host/visible_text.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

namespace Zentara::Viewer {

using Host::Failure;
using Host::Frame;
using Host::Kind;
using State = Host::Stream::State;

namespace {

constexpr unsigned long lookMilliseconds = 100; ///< how late an absence is seen
constexpr unsigned long dueMilliseconds = 4;    ///< how late a frame of a recording that was held may be
constexpr int triesEvery = 10;                  ///< looks, between two attempts to open a camera
constexpr std::size_t queuedFrames = 120;       ///< of two seconds: while a disk takes its time
constexpr int mostAtOnce = 30;                  ///< frames, until the other stream has its turn
constexpr std::int64_t second = 1'000'000;

bool comesBack(const Failure& failure) {
    return failure.code() == Failure::NoDevice || failure.code() == Failure::Busy ||
           failure.code() == Failure::TimedOut;
}

std::string textOf(const Failure& failure) { return Host::visibleText(failure.what()); }

} // namespace

/// One stream, and when its frames of the last second arrived.
struct CameraFeed::Track {
    Host::Stream stream;
    std::size_t number; ///< among the tracks
    std::deque<std::int64_t> arrivals{};
    std::optional<Frame> ahead{};         ///< taken from a recording that was held, before its time
    std::optional<std::int64_t> origin{}; ///< of the device's clock, on the host's

    /// Whether a recording that was held so long would have delivered it by now. Its stream goes by a clock that is not held,
    /// and hurries as soon as it can.
    bool isDue(const Frame& frame, std::int64_t held) {
        const std::int64_t now = Utils::Clock::nowMicros();
        if (!origin || frame.isFirstAfterReturn())
            origin = now - held - frame.deviceMicros();
        return *origin + frame.deviceMicros() + held <= now;
    }

    void count(const Frame& frame) {
        arrivals.push_back(frame.hostMicros());
        while (arrivals.front() + second < arrivals.back())
            arrivals.pop_front();
    }
    void fill(StreamRate& rate) const {
        const Host::StreamCounts counts = stream.counts();
        rate.lost = counts.lostByDevice;
        rate.dropped = counts.droppedByQueue + counts.missed;
        rate.framesPerSecond = arrivals.size() < 2
                                   ? 0
                                   : static_cast<double>(arrivals.size() - 1) * second /
                                         static_cast<double>(arrivals.back() - arrivals.front());
    }
};

CameraFeed::CameraFeed(Host::CameraInfo camera, FeedRules wanted, Opener opener, std::function<void()> waker)
    : who(std::move(camera)), rules(std::move(wanted)), open(std::move(opener)), wakeViewer(std::move(waker)),
      wake(std::make_shared<Utils::Threading::Signal>()), thread([this] { run(); }) {}

CameraFeed::~CameraFeed() {
    end();
    thread.join();
}

FeedState CameraFeed::state() const {
    const std::lock_guard<std::mutex> guard(lock);
    return now;
}

std::uint64_t CameraFeed::shown() const {
    const std::lock_guard<std::mutex> guard(lock);
    return now.shown;
}

std::optional<Host::Camera> CameraFeed::camera() const {
    const std::lock_guard<std::mutex> guard(lock);
    return opened;
}

std::vector<Host::StreamInfo> CameraFeed::recordable() const {
    const std::lock_guard<std::mutex> guard(lock);
    return infos;
}

void CameraFeed::recordTo(std::shared_ptr<Film> wanted, std::size_t first) {
    const std::lock_guard<std::mutex> guard(lock);
    film = std::move(wanted);
    firstInFilm = first;
}

void CameraFeed::hold(bool isHeld) {
    const std::lock_guard<std::mutex> guard(lock);
    held = isHeld;
    wake->set();
}

void CameraFeed::again() {
    const std::lock_guard<std::mutex> guard(lock);
    restart = rules.recorded;
    wake->set();
}

void CameraFeed::end() {
    const std::lock_guard<std::mutex> guard(lock);
    ending = true;
    wake->set();
}

bool CameraFeed::isOver() const {
    const std::lock_guard<std::mutex> guard(lock);
    return over;
}

bool CameraFeed::isEnding() const {
    const std::lock_guard<std::mutex> guard(lock);
    return ending;
}

void CameraFeed::tell(Phase phase, const std::string& text) {
    {
        const std::lock_guard<std::mutex> guard(lock);
        if (now.phase == phase && now.text == text)
            return;
        now.phase = phase;
        now.text = text;
        ++now.shown;
    }
    wakeViewer();
}

void CameraFeed::run() {
    while (!isEnding()) {
        try {
            stream();
        } catch (const Failure& failure) {
            tell(comesBack(failure) ? Phase::Away : Phase::Failed,
                 textOf(failure) + (comesBack(failure) ? "; tried again every second" : ""));
        } catch (const std::exception& failure) {
            tell(Phase::Failed, Host::visibleText(failure.what()));
        }
        tracks.clear();
        {
            const std::lock_guard<std::mutex> guard(lock);
            opened.reset();
            infos.clear();
        }
        pauseUntilNextTry();
    }
    const std::lock_guard<std::mutex> guard(lock);
    over = true;
}

/// A camera that failed for good, and a recording that is over, wait for somebody to say so.
void CameraFeed::pauseUntilNextTry() {
    for (int look = 0;; ++look) {
        {
            const std::lock_guard<std::mutex> guard(lock);
            if (ending || std::exchange(restart, false) || (look >= triesEvery && now.phase == Phase::Away))
                return;
        }
        wake->timedWait(lookMilliseconds);
    }
}

void CameraFeed::stream() {
    if (rules.recorded)
        tell(Phase::Opening, "");
    const Host::Camera camera = open();
    heldMicros = 0;
    openTracks(camera);
    for (Track& track : tracks) {
        track.stream.wake(wake);
        track.stream.start();
    }
    {
        const std::lock_guard<std::mutex> guard(lock);
        opened = camera;
        for (const Track& track : tracks)
            infos.push_back(track.stream.info());
    }
    tell(Phase::Streaming, "");
    std::optional<std::int64_t> heldSince;
    for (bool goesOn = true; goesOn;) {
        const bool isAhead = std::any_of(tracks.begin(), tracks.end(),
                                         [](const Track& track) { return track.ahead.has_value(); });
        wake->timedWait(isAhead ? dueMilliseconds : lookMilliseconds);
        {
            const std::lock_guard<std::mutex> guard(lock);
            if (ending || restart)
                return;
            if (held && rules.recorded) {
                heldSince = heldSince.value_or(Utils::Clock::nowMicros());
                continue;
            }
        }
        if (heldSince)
            heldMicros += Utils::Clock::nowMicros() - *std::exchange(heldSince, std::nullopt);
        goesOn = false;
        std::string away;
        for (Track& track : tracks) {
            const State before = track.stream.state();
            const bool isMore = take(track, track.stream.info().mode.kind == Kind::Color);
            if (isMore)
                wake->set();
            goesOn = goesOn || isMore || track.ahead || before != State::Ended;
            if (const auto trouble = track.stream.trouble(); before == State::Away && trouble && away.empty())
                away = textOf(*trouble);
        }
        if (!goesOn)
            tell(Phase::Ended, "the recording is over");
        else
            tell(away.empty() ? Phase::Streaming : Phase::Away, away);
    }
}

/// \return whether there may be more
bool CameraFeed::take(Track& track, bool isColor) {
    std::optional<Frame> last;
    std::shared_ptr<Film> into;
    std::size_t first = 0;
    {
        const std::lock_guard<std::mutex> guard(lock);
        into = film;
        first = firstInFilm;
    }
    int taken = 0;
    for (; taken < mostAtOnce; ++taken) {
        std::optional<Frame> frame =
            track.ahead ? std::exchange(track.ahead, std::nullopt) : track.stream.poll();
        if (!frame)
            break;
        if (rules.recorded && !track.isDue(*frame, heldMicros) && heldMicros != 0) {
            track.ahead = std::move(frame);
            break;
        }
        track.count(*frame);
        if (into)
            into->add(first + track.number, *frame);
        last = std::move(frame);
    }
    if (!last)
        return false;
    if (rules.corrected && !isColor)
        last = last->corrected();
    {
        const std::lock_guard<std::mutex> guard(lock);
        (isColor ? now.color : now.depth) = std::move(last);
        track.fill(isColor ? now.colorRate : now.depthRate);
        ++now.shown;
    }
    wakeViewer();
    return taken == mostAtOnce;
}

void CameraFeed::openTracks(const Host::Camera& camera) {
    const auto has = [this](Kind kind) {
        return std::find(who.kinds.begin(), who.kinds.end(), kind) != who.kinds.end();
    };
    const auto add = [&](Kind kind, const std::string& mode) {
        const Host::StreamOptions options{.mode = mode,
                                          .queue = queuedFrames,
                                          .awaitReturn = !rules.recorded,
                                          .started = false,
                                          .keepsAll = rules.recorded,
                                          .shared = rules.shared};
        tracks.push_back({camera.stream(kind, options), tracks.size()});
        const std::lock_guard<std::mutex> guard(lock);
        (kind == Kind::Color ? now.colorRate : now.depthRate).mode = tracks.back().stream.info().mode.text();
    };
    if (has(Kind::Depth))
        add(Kind::Depth, rules.mode);
    std::string colorless;
    if (has(Kind::Color)) {
        const std::vector<Host::Mode> modes = camera.modes(Kind::Color);
        const auto plain = std::find_if(modes.begin(), modes.end(), [](const Host::Mode& mode) {
            return mode.compression == CompressionType_NONE;
        });
        try {
            if (rules.colorMode.empty() && plain == modes.end())
                colorless = "colour comes compressed, which is not shown";
            else
                add(Kind::Color, rules.colorMode.empty() ? plain->name : rules.colorMode);
        } catch (const Failure& failure) {
            if (tracks.empty())
                throw;
            colorless = textOf(failure);
        }
    }
    if (tracks.empty())
        throw Failure(Failure::Failed, "camera " + who.shortLabel() + " streams no picture that can be shown",
                      colorless);
    const std::lock_guard<std::mutex> guard(lock);
    now.colorless = colorless;
}

} // namespace Zentara::Viewer
