#include "unit/workbench/desktop_window.h"

#include <algorithm>
#include <cmath>

namespace unit {
namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 800;
// The usual display, in dots per inch, and what a display may say without being disbelieved.
constexpr float kUsualDots = 96;
constexpr float kMostDots = 400;

// In quarters, so that fonts keep their looks from display to display.
float ScaleOf(int display) {
    float dots = 0;
    if (SDL_GetDisplayDPI(display, &dots, nullptr, nullptr) != 0 || dots > kMostDots)
        return 1;
    return std::max(1.0F, std::round(dots / kUsualDots * 4) / 4);
}

}  // namespace

bool DesktopWindow::DisplayAvailable(std::string& problem) {
    if (!SDL_getenv("DISPLAY") && !SDL_getenv("WAYLAND_DISPLAY")) {
        problem = "neither DISPLAY nor WAYLAND_DISPLAY is set";
        return false;
    }
    // Signals are the unit's own business.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_Init(SDL_INIT_VIDEO) == 0)
        return true;
    problem = SDL_GetError();
    return false;
}

DesktopWindow::DesktopWindow(bool full_screen) {
    // A click that brings the window forward is meant for what is under it.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_Rect room{0, 0, kWidth, kHeight};
    SDL_GetDisplayUsableBounds(0, &room);
    scale_ = ScaleOf(0);
    const auto side = [this](int usual, int most) {
        return std::min(static_cast<int>(static_cast<float>(usual) * scale_), most);
    };
    window_.reset(SDL_CreateWindow("Tolvane - virtual unit", SDL_WINDOWPOS_CENTERED,
                                   SDL_WINDOWPOS_CENTERED, side(kWidth, room.w),
                                   side(kHeight, room.h),
                                   SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI));
    // No waiting for the display: the hardware's thread has other things to do as well.
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_TARGETTEXTURE));
    if (!renderer_)
        renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_SOFTWARE));
    // Where the pixels are denser than the window's units, these are of the usual size already.
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
