#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/camera.h>

#include "tools/viewer/errands.h"

namespace Zentara::Viewer {

/// What a camera says of itself, and what it is told, beside its streams: each question waits for the camera on a thread
/// of its own. Safe.
class CameraControls final {
public:
    struct State {
        std::vector<Host::Temperature> temperatures;
        std::vector<Host::Parameter> parameters;
        std::string trouble;       ///< of the last question; empty while all is well
        std::uint64_t answers = 0; ///< counts what is new
    };

    /// \param camera gives the camera, once it is open \param wake is called when something is new
    CameraControls(std::function<std::optional<Host::Camera>()> camera, std::function<void()> wake);

    [[nodiscard]] State state() const;

    /// Asks anew, unless that is under way. \param parametersToo which takes many questions
    void refresh(bool parametersToo);
    /// Sets a parameter; of several values only the newest is told, when the camera is slow.
    void set(int number, const Host::ParameterValue& value);

    /// As Errands::isDoneWithin().
    [[nodiscard]] bool isDoneWithin(std::chrono::milliseconds limit) { return errands.isDoneWithin(limit); }

private:
    void ask(bool parametersToo);
    void tellCamera();
    void noteTrouble(const std::string& text);

    const std::function<std::optional<Host::Camera>()> give;
    const std::function<void()> wakeViewer;
    mutable std::mutex lock; ///< guards what follows, but for the errands
    State now;
    Host::ParameterValues wanted; ///< not told yet
    bool isAsking = false;
    Errands errands; ///< last: it ends first
};

} // namespace Zentara::Viewer
