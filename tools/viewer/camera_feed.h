#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <zentara/host/camera.h>
#include <zentara/host/frame_set.h>
#include <zentara/host/stream.h>
#include <zentara/utils/signal.h>

#include "tools/viewer/film.h"

namespace Zentara::Viewer {

/// How a camera is streamed.
struct FeedRules {
    std::string mode;       ///< of depth; the camera's first one unless given
    std::string colorMode;  ///< of colour; the first one that is not compressed
    bool shared = false;    ///< with other programs
    bool corrected = false; ///< what is shown
    bool recorded = false;  ///< a recording plays: it ends, and can be held
};

/// How much came of one stream.
struct StreamRate {
    std::string mode; ///< "320x240@60"; empty for a stream that is not there
    double framesPerSecond = 0;
    std::uint64_t lost = 0;    ///< frames that the camera lost, as their times tell
    std::uint64_t dropped = 0; ///< frames that came too fast to be taken
};

/// What a feed has at one moment. A plain value.
struct FeedState {
    enum class Phase {
        Opening,
        Streaming,
        Away,   ///< pulled out, or somebody else has it: tried again
        Ended,  ///< a recording is over
        Failed, ///< for good
    };
    Phase phase = Phase::Opening;
    std::string text;      ///< why, for people; empty while all is well
    std::string colorless; ///< why there is no colour; empty where there is, or nobody expects it
    std::optional<Host::Frame> depth;
    std::optional<Host::Frame> color;
    std::uint64_t shown = 0; ///< counts what is new among the two
    StreamRate depthRate;
    StreamRate colorRate;
};

/// Streams one camera on a thread of its own: hands the newest frames to whoever shows them, and all of them to a
/// recording. Opens the camera again when it could not be had. Safe.
class CameraFeed final {
public:
    using Opener = std::function<Host::Camera()>;

    /// \param wake is called on the feed's thread when there is something new to show
    CameraFeed(Host::CameraInfo camera, FeedRules rules, Opener open, std::function<void()> wake);
    /// Ends as end() does, and waits for that.
    ~CameraFeed();
    CameraFeed(const CameraFeed&) = delete;
    CameraFeed& operator=(const CameraFeed&) = delete;

    [[nodiscard]] const Host::CameraInfo& info() const noexcept { return who; }
    [[nodiscard]] bool isRecording() const noexcept { return rules.recorded; }
    [[nodiscard]] FeedState state() const;
    /// The same, but for the frames' handles: whether there is something newer than that.
    [[nodiscard]] std::uint64_t shown() const;
    /// The camera, once it is open.
    [[nodiscard]] std::optional<Host::Camera> camera() const;

    /// Streams of which all frames go to the film from now on; nothing while the camera is not open.
    [[nodiscard]] std::vector<Host::StreamInfo> recordable() const;
    /// \param first the index of the first of these streams in the film; null for no film
    void recordTo(std::shared_ptr<Film> film, std::size_t first);

    /// Holds a recording that plays where it is, or lets it go on.
    void hold(bool isHeld);
    /// Plays a recording from its beginning again.
    void again();

    /// Asks it to end. Its destructor waits for it; an end may take as long as a call of the camera.
    void end();
    [[nodiscard]] bool isOver() const;

private:
    using Phase = FeedState::Phase;
    struct Track;

    void run();
    void stream();
    [[nodiscard]] bool take(Track& track, bool isColor);
    void openTracks(const Host::Camera& opened);
    void tell(Phase phase, const std::string& text);
    [[nodiscard]] bool isEnding() const;
    void pauseUntilNextTry();

    const Host::CameraInfo who;
    const FeedRules rules;
    const Opener open;
    const std::function<void()> wakeViewer;
    std::shared_ptr<Utils::Threading::Signal> wake; ///< the streams' and the viewer's: something has happened

    std::vector<Track> tracks;   ///< of the feed's thread
    std::int64_t heldMicros = 0; ///< the same: how long a recording that plays has been held so far

    mutable std::mutex lock; ///< guards all that follows
    FeedState now;
    std::optional<Host::Camera> opened;
    std::vector<Host::StreamInfo> infos; ///< of the tracks
    std::shared_ptr<Film> film;
    std::size_t firstInFilm = 0;
    bool held = false;
    bool restart = false;
    bool ending = false;
    bool over = false;

    std::thread thread;
};

} // namespace Zentara::Viewer
