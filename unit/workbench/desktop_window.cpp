#include "unit/workbench/desktop_window.h"

#include <algorithm>
#include <cmath>

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

}  // namespace

bool DesktopWindow::DisplayAvailable(std::string& problem) {
    if (!SDL_getenv("DISPLAY") && !SDL_getenv("WAYLAND_DISPLAY")) {
        problem = "neither DISPLAY nor WAYLAND_DISPLAY is set";
        return false;
    }
    // The command handles the signals itself.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_Init(SDL_INIT_VIDEO) == 0)
        return true;
    problem = SDL_GetError();
    return false;
}

DesktopWindow::DesktopWindow(bool full_screen) {
    // A click that activates the window also counts for what is under it.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_Rect bounds{0, 0, kWidth, kHeight};
    SDL_GetDisplayUsableBounds(0, &bounds);
    scale_ = ScaleOf(0);
    const auto side = [this](int preferred, int limit) {
        return std::min(static_cast<int>(static_cast<float>(preferred) * scale_), limit);
    };
    window_.reset(SDL_CreateWindow("Tolvane - virtual unit", SDL_WINDOWPOS_CENTERED,
                                   SDL_WINDOWPOS_CENTERED, side(kWidth, bounds.w),
                                   side(kHeight, bounds.h),
                                   SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI));
    // Without waiting for the display's refresh: the host thread must stay responsive.
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_TARGETTEXTURE));
    if (!renderer_)
        renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_SOFTWARE));
    // Where a unit has several pixels, the units themselves are scaled to the display already.
    if (density() > 1)
        scale_ = 1;
    SetFullScreen(full_screen);
    SDL_ShowCursor(full_screen ? SDL_DISABLE : SDL_ENABLE);
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

float DesktopWindow::density() const {
    SDL_Point pixels{};
    SDL_GetRendererOutputSize(renderer_.get(), &pixels.x, &pixels.y);
    const int width = size().x;
    return width > 0 ? static_cast<float>(pixels.x) / static_cast<float>(width) : 1;
}

void DesktopWindow::SetFullScreen(bool full_screen) {
    if (full_screen != full_screen_)
        SDL_SetWindowFullscreen(window_.get(), full_screen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
    full_screen_ = full_screen;
}

void DesktopWindow::BringForward() {
    SDL_RestoreWindow(window_.get());
    SDL_RaiseWindow(window_.get());
}

}  // namespace unit
