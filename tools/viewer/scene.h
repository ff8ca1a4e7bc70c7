#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/host/color_map.h>

#include "tools/viewer/camera_controls.h"
#include "tools/viewer/camera_feed.h"
#include "tools/viewer/cloud_painter.h"
#include "tools/viewer/view_wishes.h"

namespace Zentara::Viewer {

/// One camera of those that there are, and what is shown of it.
struct SceneCamera {
    Host::CameraInfo info;
    bool isThere = true; ///< plugged in, as far as the buses tell
    // Null while it is not to be shown; they end in the order of their making, backwards.
    std::unique_ptr<CameraFeed> feed;
    std::unique_ptr<CameraControls> controls;
    FeedState state{};             ///< what is shown: as it was when the pictures were paused
    CameraControls::State known{}; ///< what it says of itself
    DepthColors colors{};
    CloudPainter cloud{};
    std::vector<std::uint8_t> rgb{}; ///< for painting

    [[nodiscard]] bool isShown() const noexcept { return feed != nullptr; }
};

/// All that the window is about, without the window: the cameras, what is shown of them and how, the recording and the
/// snapshots. Bound to one thread, whose drawing nothing of it waits for.
class Scene final {
public:
    /// \param wake is called on threads of its own when there is something new
    /// \throws Failure when no such camera is there, or the recording cannot be read
    Scene(const ViewWishes& wishes, std::function<void()> wake);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Takes what is new: pictures, unless they are paused, cameras that came and went. \return whether anything is
    bool update();
    /// Asks the selected camera what its sensors read and its parameters are.
    void askSelected();
    /// Until it has answered, or takes too long.
    void waitForAnswers();
    /// Takes the range of the pictures, where that is wanted.
    void followRange();

    [[nodiscard]] std::vector<std::unique_ptr<SceneCamera>>& cameras() noexcept { return all; }
    [[nodiscard]] bool isPlaying() const noexcept { return !play.empty(); }
    void show(SceneCamera& camera, bool isShown);

    /// Whose values and parameters are wanted; null when none is shown.
    [[nodiscard]] SceneCamera* selected() noexcept;
    void select(SceneCamera& camera);
    void selectNext();

    // How it is shown.
    [[nodiscard]] const Host::ValueRange& range() const noexcept { return shownRange; }
    void setRange(Host::ValueRange millimetres);
    [[nodiscard]] bool followsPictures() const noexcept { return automatic; }
    void followPictures(bool isWanted);
    [[nodiscard]] bool isPaused() const noexcept { return paused; }
    void togglePause();
    void playAgain();
    bool hasCloud = false;
    bool hasPanel = true;
    bool hasHelp = false;
    CloudPose pose;

    /// The recording that is being made; null for none.
    [[nodiscard]] const Film* film() const noexcept { return recorded.get(); }
    void toggleRecording();
    /// Files of what is shown of each camera.
    void takeSnapshot();
    /// The picture, or the points, of what is shown of a camera. \throws Failure as OutputFile and cloudOf() do
    void writeCloud(const SceneCamera& camera, const std::string& path) const;

    /// What happened last, for people; empty when it is long ago.
    [[nodiscard]] std::string message() const;
    [[nodiscard]] bool messageIsTrouble() const;

    /// Ends all streams and completes the recording. \return false when something hangs in a device
    [[nodiscard]] bool end();
    /// Completes the recording where it stands, whatever the others do: the process is about to end.
    /// \return what there is, for people; empty when nothing was recorded
    [[nodiscard]] std::string rescue();

private:
    using Clock = std::chrono::steady_clock;
    struct Bus;

    void watchBus();
    void takeBus();
    void addCamera(const Host::CameraInfo& who);
    void say(const std::string& text, bool isTrouble = false);
    [[nodiscard]] std::string place(const std::string& name) const;
    void endFilm();

    const ViewWishes wishes;
    const std::function<void()> wake;
    std::string play;
    std::optional<Host::Recording> recording;
    std::unique_ptr<Bus> bus; ///< null while a recording plays
    std::vector<std::unique_ptr<SceneCamera>> all;
    std::size_t chosen = 0;
    Host::ValueRange fixedRange;
    Host::ValueRange shownRange;
    bool automatic = false;
    bool paused = false;
    std::shared_ptr<Film> recorded;

    mutable std::mutex sayLock; ///< guards the next three: errands tell as well
    std::string said;
    bool saidTrouble = false;
    Clock::time_point saidAt;

    Errands files; ///< snapshots, the end of recordings
};

} // namespace Zentara::Viewer
