#pragma once

#include <SDL.h>

#include <cstdint>

#include "unit/board/virtual_unit.h"
#include "unit/commands/operator.h"
#include "unit/workbench/desktop_window.h"
#include "unit/workbench/layout.h"

namespace unit {

// The unit's screen in the window, in a texture that is updated only when the screen changed. Host
// thread.
class ScreenView {
  public:
    ScreenView(SDL_Renderer* renderer, VirtualUnit& unit);

    // Whether the video is visible and running.
    bool Moving() const;
    // Whether the screen changed since the last Draw.
    bool Outdated() const;

    // `place` is in pixels of the renderer's target.
    void Draw(const SDL_Rect& place, bool smooth);

  private:
    SDL_Renderer* const renderer_;
    VirtualUnit& unit_;
    SdlOwner<SDL_Texture> texture_;
    std::uint64_t drawn_version_ = 0;
};

// The mouse as the finger on the unit's screen. When it leaves the screen with the button down, the
// finger stays at the edge. Host thread.
class MouseFinger {
  public:
    explicit MouseFinger(Operator& op) : operator_(op) {}

    // Takes a mouse event; `screen` is the screen's place in the event's units.
    void Take(const SDL_Event& event, const Area& screen);

  private:
    Operator& operator_;
    bool down_ = false;
};

}  // namespace unit
