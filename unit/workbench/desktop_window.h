#pragma once

#include <string>

#include "unit/workbench/sdl_handles.h"

namespace unit {

// The window on the host's desktop, under X11 or Wayland, and its renderer. Hardware's thread.
class DesktopWindow {
  public:
    // False with one line in `problem` when there is no display.
    static bool DisplayAvailable(std::string& problem);

    // `full_screen` covers the display and hides the mouse pointer.
    explicit DesktopWindow(bool full_screen);
    ~DesktopWindow();
    DesktopWindow(const DesktopWindow&) = delete;
    DesktopWindow& operator=(const DesktopWindow&) = delete;

    SDL_Window* window() const { return window_.get(); }
    SDL_Renderer* renderer() const { return renderer_.get(); }

    // In the window's units, in which events are told.
    SDL_Point size() const;
    // Pixels in the room of one unit.
    float density() const;
    // How large the panel's things should be: 1 on a usual display.
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
