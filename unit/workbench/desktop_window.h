#pragma once

#include <SDL.h>

#include <memory>
#include <span>
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
    enum class Display { kWorks, kNone, kBroken };

    // kNone when none is named, kBroken when the one that is named does not work, with one line in
    // `problem`.
    static Display FindDisplay(std::string& problem);

    // `full_screen` covers the display. `width` and `height`, in the window's units, are limited by
    // the display; 0: the usual size.
    DesktopWindow(const std::string& title, bool full_screen, int width, int height);
    ~DesktopWindow();
    DesktopWindow(const DesktopWindow&) = delete;
    DesktopWindow& operator=(const DesktopWindow&) = delete;

    SDL_Window* window() const { return window_.get(); }
    SDL_Renderer* renderer() const { return renderer_.get(); }

    // In the window's units, which mouse events use too.
    SDL_Point size() const;
    // In pixels.
    SDL_Point pixels() const;
    // Pixels per unit.
    float density() const;
    // The factor for the panel's sizes: 1 on an ordinary display.
    float scale() const { return scale_; }

    // Whether the window keeps what was drawn, so that only what changed has to be drawn again.
    bool KeepsContent() const { return software_; }
    // Shows what was drawn: with KeepsContent only these parts, else all.
    void Present(std::span<const SDL_Rect> parts);

    void SetTitle(const std::string& title);
    void SetFullScreen(bool full_screen);
    bool full_screen() const { return full_screen_; }
    static void ShowPointer(bool show);
    void BringForward();

  private:
    // Prefers SDL's own renderer to a graphics driver that computes everything on the processor.
    void CreateRenderer();

    SdlOwner<SDL_Window> window_;
    SdlOwner<SDL_Renderer> renderer_;
    float scale_ = 1;
    bool software_ = false;
    bool full_screen_ = false;
};

}  // namespace unit
