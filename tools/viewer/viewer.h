#pragma once

#include <vector>

#include "tools/viewer/display.h"
#include "tools/viewer/scene.h"
#include "tools/viewer/tiles.h"
#include "tools/viewer/view_wishes.h"

namespace Zentara::Viewer {

/// The window at work: draws what is new, and does what keys and mouse say.
///
/// Pictures are painted as they come, each onto its own place. All else is laid out anew only when somebody does
/// something, or some times a second, for it costs more.
class Viewer final {
public:
    /// \throws Failure as Scene and Display do
    explicit Viewer(const ViewWishes& wishes);

    /// Until somebody closes the window. \return the exit code
    [[nodiscard]] int run();
    /// Writes what the window would show with its first pictures. \throws Failure (TimedOut) when none come
    void writeSnapshot();

    [[nodiscard]] Scene& scene() noexcept { return shown; }

private:
    void drawAll();
    void drawPictures();
    void layOut(const Canvas& canvas);
    void turnCloud();
    void press(int key);

    const ViewWishes wishes;
    Scene shown; ///< first: without a camera there is no window
    Display display;
    std::vector<Tile> tiles;
    bool quits = false;
};

/// Ends run() as soon as it looks. Safe, also for a signal's handler.
void quitViewer(int exitCode) noexcept;

} // namespace Zentara::Viewer
