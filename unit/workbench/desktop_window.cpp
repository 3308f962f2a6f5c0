#include "unit/workbench/desktop_window.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include "unit/workbench/layout.h"

namespace unit {
namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 800;
// Dots per inch of an ordinary display, and the highest value that is taken for true.
constexpr float kOrdinaryDots = 96;
constexpr float kMaxDots = 400;

// Rounded to quarters, so that fonts look alike on similar displays.
float ScaleOf(int display) {
    float dots = 0;
    if (SDL_GetDisplayDPI(display, &dots, nullptr, nullptr) != 0 || dots > kMaxDots)
        return 1;
    return std::max(1.0F, std::round(dots / kOrdinaryDots * 4) / 4);
}

// Whether the current renderer's driver has no graphics hardware.
bool DriverComputes() {
    using GetString = const unsigned char* (*)(unsigned int);
    constexpr unsigned int kRenderer = 0x1F01;  // GL_RENDERER
    void* const function = SDL_GL_GetProcAddress("glGetString");
    if (!function || !SDL_GL_GetCurrentContext())
        return false;
    const auto* const name =
        reinterpret_cast<const char*>(reinterpret_cast<GetString>(function)(kRenderer));
    const std::string_view driver = name ? name : "";
    return driver.starts_with("llvmpipe") || driver.starts_with("softpipe") ||
           driver.find("SWR") != std::string_view::npos;
}

// The displays that the environment names, as "DISPLAY=:0"; empty for none.
std::string NamedDisplays() {
    std::string named;
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        const char* const value = SDL_getenv(variable);
        if (value && *value != '\0')
            named += (named.empty() ? "" : ", ") + std::string(variable) + "=" + value;
    }
    return named;
}

}  // namespace

DesktopWindow::Display DesktopWindow::FindDisplay(std::string& problem) {
    const std::string named = NamedDisplays();
    if (named.empty()) {
        problem = "neither DISPLAY nor WAYLAND_DISPLAY is set";
        return Display::kNone;
    }
    // The command handles the signals itself.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // Or SDL would try displays that nobody named, with messages of their libraries.
    const bool wayland = named.find("WAYLAND") != std::string::npos;
    SDL_SetHint(SDL_HINT_VIDEODRIVER, wayland ? "wayland,x11" : "x11");
    problem = named + " cannot be used";
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        problem += std::string(": ") + SDL_GetError();
        return Display::kBroken;
    }
    return Display::kWorks;
}

DesktopWindow::DesktopWindow(const std::string& title, bool full_screen, int width, int height) {
    // A click that activates the window also counts for what is under it.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_Rect bounds{0, 0, kWidth, kHeight};
    SDL_GetDisplayUsableBounds(0, &bounds);
    scale_ = ScaleOf(0);
    const auto scaled = [this](int length) {
        return static_cast<int>(static_cast<float>(length) * scale_);
    };
    const int least_width = std::min(scaled(kMinWindowWidth), bounds.w);
    const int least_height = std::min(scaled(kMinWindowHeight), bounds.h);
    window_.reset(
        SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                         std::clamp(width > 0 ? width : scaled(kWidth), least_width, bounds.w),
                         std::clamp(height > 0 ? height : scaled(kHeight), least_height, bounds.h),
                         SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI));
    CreateRenderer();
    SDL_SetWindowMinimumSize(window_.get(), least_width, least_height);
    // Where a unit has several pixels, the units themselves are scaled to the display already.
    if (density() > 1)
        scale_ = 1;
    SetFullScreen(full_screen);
}

void DesktopWindow::CreateRenderer() {
    // The renderer without a graphics driver then writes to the display itself, part by part.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    // Without waiting for the display's refresh: the host thread must stay responsive.
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_TARGETTEXTURE));
    if (renderer_ && !SDL_GetHint(SDL_HINT_RENDER_DRIVER) && DriverComputes()) {
        renderer_.reset();
        // A window remembers the driver that drew into it.
        SDL_Rect place{};
        SDL_GetWindowPosition(window_.get(), &place.x, &place.y);
        SDL_GetWindowSize(window_.get(), &place.w, &place.h);
        const std::string title = SDL_GetWindowTitle(window_.get());
        window_.reset(SDL_CreateWindow(title.c_str(), place.x, place.y, place.w, place.h,
                                       SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI));
    }
    if (!renderer_)
        renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_SOFTWARE));
    SDL_RendererInfo info{};
    SDL_GetRendererInfo(renderer_.get(), &info);
    software_ = (info.flags & SDL_RENDERER_SOFTWARE) != 0;
}

DesktopWindow::~DesktopWindow() {
    renderer_.reset();
    window_.reset();
    SDL_Quit();
}

SDL_Point DesktopWindow::size() const {
    SDL_Point size{};
    SDL_GetWindowSize(window_.get(), &size.x, &size.y);
    return size;
}

SDL_Point DesktopWindow::pixels() const {
    SDL_Point pixels{};
    SDL_GetRendererOutputSize(renderer_.get(), &pixels.x, &pixels.y);
    return {std::max(1, pixels.x), std::max(1, pixels.y)};
}

float DesktopWindow::density() const {
    const int width = size().x;
    return width > 0 ? static_cast<float>(pixels().x) / static_cast<float>(width) : 1;
}

void DesktopWindow::Present(std::span<const SDL_Rect> parts) {
    if (!KeepsContent())
        return SDL_RenderPresent(renderer_.get());
    SDL_RenderFlush(renderer_.get());
    if (SDL_UpdateWindowSurfaceRects(window_.get(), parts.data(), static_cast<int>(parts.size())) !=
        0)
        SDL_RenderPresent(renderer_.get());
}

void DesktopWindow::SetTitle(const std::string& title) {
    SDL_SetWindowTitle(window_.get(), title.c_str());
}

void DesktopWindow::SetFullScreen(bool full_screen) {
    if (full_screen != full_screen_)
        SDL_SetWindowFullscreen(window_.get(), full_screen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
    full_screen_ = full_screen;
}

void DesktopWindow::ShowPointer(bool show) {
    SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
}

void DesktopWindow::BringForward() {
    SDL_RestoreWindow(window_.get());
    SDL_RaiseWindow(window_.get());
}

}  // namespace unit
