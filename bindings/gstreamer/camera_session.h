#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/camera.h>
#include <zentara/host/note.h>

namespace Zentara::GStreamer {

/// The camera of one `zentarasrc`, from READY to READY; all of its streams are this one's. Safe.
class CameraSession {
public:
    struct Wanted {
        std::string recording; ///< a file to play; empty for a camera that is plugged in
        std::string camera;    ///< serial number, path or a part of the name; empty for the first one
    };

    CameraSession(Wanted which, Host::Note whereNotesGo);

    /// Opens it at the first call, and asks for its modes; later ones wait for that.
    /// \throws Host::Failure, the same each time
    [[nodiscard]] Host::Camera camera();

    /// The modes in which it streams that kind, if they are known by now; waits for nothing.
    [[nodiscard]] std::optional<std::vector<Host::Mode>> modes(Host::Kind kind) const;

private:
    [[nodiscard]] Host::Camera open() const;

    const Wanted wanted;
    const Host::Note note;
    std::mutex opening;                   ///< held for as long as opening takes; before `lock`
    std::optional<Host::Camera> opened;   // guarded by `opening`
    std::optional<Host::Failure> failure; // guarded by `opening`
    mutable std::mutex lock;
    std::vector<Host::Mode> known; // guarded by `lock`: of all kinds
    bool areKnown = false;         // guarded by `lock`
};

} // namespace Zentara::GStreamer
