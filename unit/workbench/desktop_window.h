#pragma once

#include <SDL.h>

#include <memory>
#include <string>

namespace unit {

struct SdlDeleter {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
    void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};
template <class Handle>
using SdlOwner = std::unique_ptr<Handle, SdlDeleter>;

// The window on the host's desktop, under X11 or Wayland, and its renderer. Host thread.
class DesktopWindow {
  public:
    // False, with one line in `problem`, when there is no display.
    static bool DisplayAvailable(std::string& problem);

    // `full_screen` covers the display and hides the mouse pointer.
    explicit DesktopWindow(bool full_screen);
    ~DesktopWindow();
    DesktopWindow(const DesktopWindow&) = delete;
    DesktopWindow& operator=(const DesktopWindow&) = delete;

    SDL_Window* window() const { return window_.get(); }
    SDL_Renderer* renderer() const { return renderer_.get(); }

    // In the window's units, which mouse events use too.
    SDL_Point size() const;
    // Pixels per unit.
    float density() const;
    // The factor for the panel's sizes: 1 on an ordinary display.
    float scale() const { return scale_; }

    void SetFullScreen(bool full_screen);
    void BringForward();

  private:
    SdlOwner<SDL_Window> window_;
    SdlOwner<SDL_Renderer> renderer_;
    float scale_ = 1;
    bool full_screen_ = false;
};

}  // namespace unit
