#include "tools/viewer/display.h"

#include <atomic>
#include <cmath>
#include <cstring>
#include <string_view>

#include <SDL.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

#include <zentara/host/failure.h>

namespace Zentara::Viewer {

using Host::Failure;

namespace {

constexpr int usualWidth = 1280;
constexpr int usualHeight = 540;
constexpr float usualDpi = 96;
constexpr float letterPixels = 13; ///< at scale 1, of the font that comes with ImGui
constexpr double leastScale = 0.5;
constexpr double greatestScale = 8;

std::atomic<Uint32> wakeEvent = 0; ///< 0 while there is no window
std::atomic<bool> isWoken = false; ///< one such event is enough

std::atomic<void (*)()> endAction = nullptr;

/// Called on every thread that misses the desktop; none may go on, and the first one ends them all.
int endWithDesktop(void*) {
    if (const auto action = endAction.exchange(nullptr))
        action();
    for (;;)
        SDL_Delay(1000);
}

struct Deleter {
    void operator()(SDL_Window* window) const noexcept { SDL_DestroyWindow(window); }
    void operator()(SDL_Surface* surface) const noexcept { SDL_FreeSurface(surface); }
    void operator()(SDL_Renderer* renderer) const noexcept { SDL_DestroyRenderer(renderer); }
    void operator()(SDL_Texture* texture) const noexcept { SDL_DestroyTexture(texture); }
};
template<typename T>
using Owned = std::unique_ptr<T, Deleter>;

[[noreturn]] void failForLackOfDisplay(const std::string& cause) {
    throw Failure(Failure::Failed, "cannot open a window", cause,
                  "run it on a desktop, or write what the window would show: --snapshot FILE");
}

/// Some of SDL's drivers show nothing: nobody would know that it runs.
void beginVideo() {
    const auto isSet = [](const char* variable) { return SDL_getenv(variable) != nullptr; };
    if (std::string_view(SDL_GetPlatform()) == "Linux" && !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") &&
        !isSet("SDL_VIDEODRIVER"))
        failForLackOfDisplay("neither DISPLAY nor WAYLAND_DISPLAY is set");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0"); // straight to the desktop, without OpenGL
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (SDL_Init(SDL_INIT_VIDEO) != 0)
        failForLackOfDisplay(SDL_GetError());
    const char* const driver = SDL_GetCurrentVideoDriver();
    const std::string_view name = driver == nullptr ? "" : driver;
    if (name == "offscreen" || name == "dummy" || name == "evdev") {
        SDL_Quit();
        failForLackOfDisplay("there is no display");
    }
}

double desktopScale() {
    float dpi = usualDpi;
    if (SDL_GetDisplayDPI(0, nullptr, &dpi, nullptr) != 0)
        return 1;
    // Letters of a bitmap are clear at halves only, and screens tell sizes that are nearly right.
    return std::clamp(std::round(static_cast<double>(dpi / usualDpi) * 2) / 2, 1.0, greatestScale);
}

} // namespace

struct Display::Impl {
    bool isUnseen = false;
    double scale = 1;
    Owned<SDL_Window> window;
    Owned<SDL_Surface> surface;
    Owned<SDL_Renderer> renderer; ///< draws on the surface
    Owned<SDL_Texture> letters;   ///< the renderer's
    Uint64 laidOutAt = 0;

    void fitTo(int width, int height);
    void drawList(const ImDrawList& list);
    void beginLetters();
};

Display::Display(const DisplaySetup& setup) : impl(std::make_unique<Impl>()) {
    impl->isUnseen = setup.isUnseen;
    if (!setup.isUnseen)
        beginVideo();
    impl->scale = setup.scale != 0 ? std::clamp(setup.scale, leastScale, greatestScale)
                  : setup.isUnseen ? 1
                                   : desktopScale();
    const int width = setup.width > 0 ? setup.width : static_cast<int>(usualWidth * impl->scale);
    const int height = setup.height > 0 ? setup.height : static_cast<int>(usualHeight * impl->scale);
    ImGui::CreateContext();
    ImGui::GetIO().IniFilename = nullptr;
    ImGui::GetIO().ConfigFlags |= ImGuiConfigFlags_NoMouseCursorChange;
    if (!setup.isUnseen) {
        impl->window.reset(SDL_CreateWindow(setup.title.c_str(), SDL_WINDOWPOS_UNDEFINED,
                                            SDL_WINDOWPOS_UNDEFINED, width, height, SDL_WINDOW_RESIZABLE));
        if (!impl->window)
            failForLackOfDisplay(SDL_GetError());
        ImGui_ImplSDL2_InitForSDLRenderer(impl->window.get());
        const Uint32 event = SDL_RegisterEvents(1);
        wakeEvent = event == static_cast<Uint32>(-1) ? 0 : event;
    }
    impl->fitTo(width, height);
}

Display::~Display() {
    wakeEvent = 0;
    impl->letters.reset();
    if (!impl->isUnseen)
        ImGui_ImplSDL2_Shutdown();
    ImGui::DestroyContext();
    impl->renderer.reset();
    impl->surface.reset();
    impl->window.reset();
    if (!impl->isUnseen)
        SDL_Quit();
}

double Display::scale() const noexcept { return impl->scale; }

/// The renderer, and the letters that are its own, belong to one surface.
void Display::Impl::fitTo(int width, int height) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    if (surface && surface->w == width && surface->h == height)
        return;
    letters.reset();
    renderer.reset();
    surface.reset(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_RGB888));
    if (surface)
        renderer.reset(SDL_CreateSoftwareRenderer(surface.get()));
    if (!renderer)
        throw Failure(Failure::Failed,
                      "cannot draw a window of " + std::to_string(width) + " x " + std::to_string(height) +
                          " pixels",
                      SDL_GetError());
    beginLetters();
}

void Display::Impl::beginLetters() {
    ImFontAtlas& fonts = *ImGui::GetIO().Fonts;
    if (fonts.Fonts.empty()) {
        ImFontConfig config;
        config.SizePixels = std::round(letterPixels * static_cast<float>(scale));
        config.OversampleH = 1; // as the bitmap has it
        config.PixelSnapH = true;
        fonts.Flags |= ImFontAtlasFlags_NoPowerOfTwoHeight | ImFontAtlasFlags_NoBakedLines;
        fonts.AddFontDefault(&config);
        ImGuiStyle& style = ImGui::GetStyle();
        ImGui::StyleColorsDark();
        // What is made of rectangles is quickly drawn.
        style.AntiAliasedLines = style.AntiAliasedFill = style.AntiAliasedLinesUseTex = false;
        style.WindowRounding = style.FrameRounding = style.GrabRounding = style.ScrollbarRounding = 0;
        style.WindowBorderSize = 0;
        style.ScaleAllSizes(static_cast<float>(scale));
    }
    unsigned char* pixels = nullptr;
    int width = 0;
    int height = 0;
    fonts.GetTexDataAsRGBA32(&pixels, &width, &height);
    letters.reset(
        SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_RGBA32, SDL_TEXTUREACCESS_STATIC, width, height));
    if (!letters || SDL_UpdateTexture(letters.get(), nullptr, pixels, width * 4) != 0)
        throw Failure(Failure::Failed, "cannot draw letters", SDL_GetError());
    SDL_SetTextureBlendMode(letters.get(), SDL_BLENDMODE_BLEND);
    SDL_SetRenderDrawBlendMode(renderer.get(), SDL_BLENDMODE_BLEND);
    fonts.SetTexID(letters.get());
}

bool Display::wait(int milliseconds, SDL_Event& event) {
    if (SDL_WaitEventTimeout(&event, milliseconds) == 0)
        return false;
    if (event.type == wakeEvent)
        isWoken = false;
    else
        ImGui_ImplSDL2_ProcessEvent(&event);
    return true;
}

void Display::whenDesktopEnds(void (*action)()) noexcept {
    endAction = action;
    using Handler = int (*)(void*);
    if (void* const library = SDL_LoadObject("libX11.so.6")) { // stays loaded: SDL has it as well
        if (void* const function = SDL_LoadFunction(library, "XSetIOErrorHandler"))
            reinterpret_cast<Handler (*)(Handler)>(function)(endWithDesktop);
    }
}

void Display::wake() noexcept {
    const Uint32 type = wakeEvent;
    if (type == 0 || isWoken.exchange(true))
        return;
    SDL_Event event{};
    event.type = type;
    if (SDL_PushEvent(&event) != 1)
        isWoken = false; // there is no room for it: what is there wakes as well
}

Canvas Display::canvas() {
    if (impl->window) {
        int width = 0;
        int height = 0;
        SDL_GetWindowSize(impl->window.get(), &width, &height);
        impl->fitTo(width, height);
    }
    const SDL_Surface& surface = *impl->surface;
    return {static_cast<std::uint32_t*>(surface.pixels), surface.w, surface.h, surface.pitch / 4};
}

void Display::beginLayout() {
    ImGuiIO& io = ImGui::GetIO();
    if (impl->window) {
        ImGui_ImplSDL2_NewFrame();
        int x = 0;
        int y = 0;
        SDL_GetMouseState(&x, &y);
        if (SDL_GetMouseFocus() == impl->window.get()) // also of a window that keys do not go to
            io.MousePos = {static_cast<float>(x), static_cast<float>(y)};
    } else
        io.DeltaTime = 1.0F / 60;
    io.DisplaySize = {static_cast<float>(impl->surface->w), static_cast<float>(impl->surface->h)};
    ImGui::NewFrame();
}

void Display::endLayout() { ImGui::Render(); }

void Display::drawLayout() {
    const ImDrawData& drawn = *ImGui::GetDrawData();
    for (int index = 0; index < drawn.CmdListsCount; ++index)
        impl->drawList(*drawn.CmdLists[index]);
    SDL_RenderSetClipRect(impl->renderer.get(), nullptr);
    SDL_RenderFlush(impl->renderer.get());
}

void Display::Impl::drawList(const ImDrawList& list) {
    for (const ImDrawCmd& command : list.CmdBuffer) {
        const SDL_Rect clip{static_cast<int>(command.ClipRect.x), static_cast<int>(command.ClipRect.y),
                            static_cast<int>(command.ClipRect.z - command.ClipRect.x),
                            static_cast<int>(command.ClipRect.w - command.ClipRect.y)};
        if (command.UserCallback != nullptr || clip.w <= 0 || clip.h <= 0)
            continue;
        SDL_RenderSetClipRect(renderer.get(), &clip);
        const ImDrawVert* const first = list.VtxBuffer.Data + command.VtxOffset;
        SDL_RenderGeometryRaw(
            renderer.get(), static_cast<SDL_Texture*>(command.GetTexID()), &first->pos.x, sizeof *first,
            reinterpret_cast<const SDL_Color*>(&first->col), sizeof *first, &first->uv.x, sizeof *first,
            list.VtxBuffer.Size - static_cast<int>(command.VtxOffset),
            list.IdxBuffer.Data + command.IdxOffset, static_cast<int>(command.ElemCount), sizeof(ImDrawIdx));
    }
}

void Display::present() {
    const Area all{0, 0, impl->surface->w, impl->surface->h};
    present({&all, 1});
}

void Display::present(std::span<const Area> parts) {
    if (!impl->window || parts.empty())
        return;
    SDL_Surface* const screen = SDL_GetWindowSurface(impl->window.get());
    if (screen == nullptr)
        throw Failure(Failure::Failed, "cannot draw in the window", SDL_GetError());
    std::vector<SDL_Rect> changed;
    for (const Area& part : parts) {
        SDL_Rect from{part.x, part.y, part.width, part.height};
        SDL_Rect to = from;
        SDL_BlitSurface(impl->surface.get(), &from, screen, &to);
        if (to.w > 0 && to.h > 0)
            changed.push_back(to);
    }
    if (!changed.empty())
        SDL_UpdateWindowSurfaceRects(impl->window.get(), changed.data(), static_cast<int>(changed.size()));
}

Host::Picture Display::picture() {
    const Canvas shown = canvas();
    std::vector<std::uint8_t> rgb;
    rgb.reserve(static_cast<std::size_t>(shown.width) * static_cast<std::size_t>(shown.height) * 3);
    for (int y = 0; y < shown.height; ++y) {
        const std::uint32_t* const row = shown.row(y);
        for (int x = 0; x < shown.width; ++x) {
            rgb.push_back(static_cast<std::uint8_t>(row[x] >> 16));
            rgb.push_back(static_cast<std::uint8_t>(row[x] >> 8));
            rgb.push_back(static_cast<std::uint8_t>(row[x]));
        }
    }
    return Host::Picture::fromRgb(static_cast<std::uint32_t>(shown.width),
                                  static_cast<std::uint32_t>(shown.height), std::move(rgb));
}

} // namespace Zentara::Viewer
