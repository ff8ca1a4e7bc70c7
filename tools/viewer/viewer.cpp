#include "tools/viewer/viewer.h"

#include <algorithm>
#include <atomic>
#include <chrono>

#include <SDL.h>
#include <imgui.h>

#include "tools/viewer/panel.h"

namespace Zentara::Viewer {

using Clock = std::chrono::steady_clock;
using Host::Failure;
using Phase = FeedState::Phase;
using std::chrono::milliseconds;

namespace {

constexpr int panelLetters = 22;      ///< how wide the panel is, in heights of a letter
constexpr int leastPicture = 8;       ///< of the same: what must be left beside the panel
constexpr milliseconds slowly{250};   ///< from one layout to the next while nobody does anything
constexpr milliseconds quickly{30};   ///< while somebody does
constexpr milliseconds collecting{3}; ///< after a frame: the camera's other one is about to come
constexpr milliseconds asking{3000};
constexpr int settling = 3; ///< layouts after somebody did something, until all has found its place
constexpr std::uint32_t background = 0x101010;
constexpr std::chrono::seconds patience{10};
constexpr double degreesPerPixel = 0.4;

std::atomic<int> quitCode = -1; ///< -1: goes on
static_assert(std::atomic<int>::is_always_lock_free);

DisplaySetup setupOf(const ViewWishes& wishes) {
    DisplaySetup setup;
    setup.title = wishes.play.empty() ? "zentara view" : "zentara view: " + wishes.play;
    if (wishes.size.size() == 2) {
        setup.width = static_cast<int>(wishes.size[0]);
        setup.height = static_cast<int>(wishes.size[1]);
    }
    setup.scale = wishes.scale;
    setup.isUnseen = !wishes.snapshot.empty();
    return setup;
}

bool endsIn(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

} // namespace

void quitViewer(int exitCode) noexcept { quitCode = exitCode; }

Viewer::Viewer(const ViewWishes& wanted)
    : wishes(wanted), shown(wanted, Display::wake), display(setupOf(wanted)) {}

int Viewer::run() {
    const auto began = Clock::now();
    Clock::time_point laidOut{};
    Clock::time_point asked{};
    Clock::time_point drawAt = Clock::time_point::max(); ///< pictures that have come
    int unsettled = settling;
    while (!quits && quitCode < 0) {
        const auto now = Clock::now();
        if (wishes.seconds > 0 && std::chrono::duration<double>(now - began).count() > wishes.seconds)
            break;
        const auto next = std::min(drawAt, laidOut + (unsettled > 0 ? quickly : slowly));
        const auto left = std::chrono::ceil<milliseconds>(next - now).count();
        SDL_Event event;
        bool any = left > 0 && display.wait(static_cast<int>(left), event);
        for (; any; any = display.wait(0, event)) {
            if (event.type == SDL_QUIT)
                quits = true;
            else if (event.type == SDL_KEYDOWN && !ImGui::GetIO().WantTextInput)
                press(event.key.keysym.sym);
            if (event.type < SDL_USEREVENT)
                unsettled = settling;
        }
        if (shown.update())
            drawAt = std::min(drawAt, Clock::now() + collecting);
        const auto then = Clock::now();
        if (then >= laidOut + (unsettled > 0 ? quickly : slowly)) {
            if (then >= asked + asking) {
                shown.askSelected();
                asked = then;
            }
            shown.followRange();
            drawAll();
            laidOut = then;
            unsettled = std::max(0, unsettled - 1);
            drawAt = Clock::time_point::max();
        } else if (then >= drawAt) {
            if (shown.hasHelp)
                drawAll(); // it stands over them
            else
                drawPictures();
            drawAt = Clock::time_point::max();
        }
    }
    return std::max(0, quitCode.load());
}

void Viewer::drawAll() {
    const Canvas canvas = display.canvas();
    display.beginLayout();
    layOut(canvas);
    display.endLayout();
    for (int y = 0; y < canvas.height; ++y)
        std::fill_n(canvas.row(y), canvas.width, background);
    for (const Tile& tile : tiles)
        paintTile(canvas, tile, shown);
    display.drawLayout();
    display.present();
}

/// Only what is new, and only where nothing is written over it.
void Viewer::drawPictures() {
    const Canvas canvas = display.canvas();
    std::vector<Area> changed;
    for (const Tile& tile : tiles) {
        const FeedState& state = tile.camera->state;
        const auto& frame = tile.frame();
        if (state.phase != Phase::Streaming || !frame || tile.picture.isEmpty())
            continue;
        paintTile(canvas, tile, shown);
        changed.push_back(canvas.clip(tile.picture));
    }
    display.present(changed);
}

void Viewer::layOut(const Canvas& canvas) {
    const float line = ImGui::GetTextLineHeightWithSpacing();
    const int status = static_cast<int>(line * 2);
    const int wide = static_cast<int>(line) * panelLetters;
    const bool hasRoom = canvas.width >= wide + static_cast<int>(line) * leastPicture;
    const int panel = shown.hasPanel && hasRoom ? wide : 0;
    const Area room{0, 0, canvas.width - panel, std::max(0, canvas.height - status)};
    if (panel > 0)
        layOutPanel(shown, {room.width, 0, panel, canvas.height});
    tiles = layOutTiles(shown, room, line); // after the panel, which may show a camera or hide it
    for (const Tile& tile : tiles)
        captionTile(tile, shown, line);
    layOutStatus(shown, {0, room.height, room.width, status});
    if (shown.hasHelp)
        layOutHelp(shown);
    turnCloud();
}

/// Drags and wheel over a cloud; a click on a picture selects its camera.
void Viewer::turnCloud() {
    const ImGuiIO& io = ImGui::GetIO();
    if (io.WantCaptureMouse)
        return;
    for (const Tile& tile : tiles) {
        if (!tile.cell.holds(io.MousePos.x, io.MousePos.y))
            continue;
        if (io.MouseClicked[0])
            shown.select(*tile.camera);
        if (tile.shows != Tile::Shows::Cloud)
            continue;
        if (io.MouseDown[0]) {
            shown.pose.right -= static_cast<double>(io.MouseDelta.x) * degreesPerPixel;
            shown.pose.up = std::clamp(shown.pose.up + static_cast<double>(io.MouseDelta.y) * degreesPerPixel,
                                       -89.0, 89.0);
        }
        if (io.MouseWheel != 0)
            shown.pose.zoom = std::clamp(shown.pose.zoom * (io.MouseWheel > 0 ? 1.1 : 1 / 1.1), 0.2, 10.0);
    }
}

void Viewer::press(int key) {
    switch (key) {
    case SDLK_SPACE:
        return shown.togglePause();
    case SDLK_r:
        return shown.toggleRecording();
    case SDLK_s:
        return shown.takeSnapshot();
    case SDLK_a:
        return shown.followPictures(!shown.followsPictures());
    case SDLK_c:
        shown.hasCloud = !shown.hasCloud;
        return;
    case SDLK_p:
        shown.hasPanel = !shown.hasPanel;
        return;
    case SDLK_h:
    case SDLK_F1:
        shown.hasHelp = !shown.hasHelp;
        return;
    case SDLK_ESCAPE:
        shown.hasHelp = false;
        return;
    case SDLK_TAB:
        return shown.selectNext();
    case SDLK_HOME:
        return shown.playAgain();
    case SDLK_0:
    case SDLK_KP_0:
        shown.pose = {.right = 0, .up = 0, .zoom = 1};
        return;
    case SDLK_q:
        quits = true;
        return;
    default:
        return;
    }
}

void Viewer::writeSnapshot() {
    const auto until = Clock::now() + patience;
    const auto isReady = [](const SceneCamera& camera) {
        const FeedState& state = camera.state;
        return state.depth && (state.color || state.colorRate.mode.empty());
    };
    for (bool isWaiting = true; isWaiting;) {
        shown.update();
        isWaiting = false;
        for (const auto& camera : shown.cameras()) {
            if (!camera->isShown() || isReady(*camera))
                continue;
            isWaiting = true;
            const FeedState& state = camera->state;
            const bool isHopeless = state.phase == Phase::Failed || state.phase == Phase::Ended;
            if (isHopeless || Clock::now() > until || quitCode >= 0)
                throw Failure(quitCode >= 0 ? Failure::Interrupted
                              : isHopeless  ? Failure::Failed
                                            : Failure::TimedOut,
                              "cannot write a snapshot of camera " + camera->info.shortLabel(),
                              state.text.empty() ? "no picture came" : state.text);
        }
        if (isWaiting)
            std::this_thread::sleep_for(milliseconds(10));
    }
    if (endsIn(wishes.snapshot, ".ply"))
        return shown.writeCloud(*shown.selected(), wishes.snapshot);
    shown.askSelected();
    shown.waitForAnswers();
    shown.update();
    for (int layout = 0; layout < settling; ++layout)
        drawAll();
    display.picture().writePng(wishes.snapshot);
}

} // namespace Zentara::Viewer
