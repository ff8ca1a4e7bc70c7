#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include <zentara/host/picture.h>

#include "tools/viewer/canvas.h"

union SDL_Event;

namespace Zentara::Viewer {

/// How a display begins.
struct DisplaySetup {
    std::string title;
    int width = 0; ///< 0: the usual size
    int height = 0;
    double scale = 0;      ///< of letters; 0: the desktop's
    bool isUnseen = false; ///< there is no window, and no desktop is asked for
};

/// A window whose pixels the processor paints: pictures go onto its canvas, and what Dear ImGui lays out is drawn over
/// them. Only what is presented is seen. One at a time; bound to the thread that makes it.
class Display final {
public:
    /// \throws Failure (Failed) when there is no desktop, or it gives no window
    explicit Display(const DisplaySetup& setup);
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    [[nodiscard]] double scale() const noexcept;

    /// Waits for something to happen, at most so long; what it was has been told to ImGui. \return whether something did
    [[nodiscard]] bool wait(int milliseconds, SDL_Event& event);
    /// What is called, once, when the desktop has ended; it must end the process, which the desktop's own library would do.
    static void whenDesktopEnds(void (*action)()) noexcept;
    /// Ends a wait. Safe.
    static void wake() noexcept;

    /// The pixels as they are, as large as the window; ends with the next wait().
    [[nodiscard]] Canvas canvas();

    // Once around what ImGui is asked to lay out.
    void beginLayout();
    void endLayout();
    /// Draws what was laid out.
    void drawLayout();

    /// Shows all, or parts. \throws Failure (Failed) when the desktop takes no pixels
    void present();
    void present(std::span<const Area> parts);

    /// What stands on the canvas.
    [[nodiscard]] Host::Picture picture();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Viewer
