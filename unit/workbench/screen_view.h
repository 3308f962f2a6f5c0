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
    // Whether the screen changed since the last Update. The video counts 30 times per second at
    // most.
    bool Outdated() const;

    // Seconds until the video changes; at least the longest wait when it does not move.
    double UntilChange() const;

    // Takes the screen as it is now.
    void Update();
    // `place` is in pixels of the renderer's target.
    void Draw(const SDL_Rect& place, bool smooth);

    // The last screen while the program had a window.
    const Picture& program_picture() const { return program_picture_; }

  private:
    SDL_Renderer* const renderer_;
    VirtualUnit& unit_;
    double VideoFrames() const;
    std::int64_t VideoFrame() const;

    SdlOwner<SDL_Texture> texture_;
    std::uint64_t drawn_version_ = 0;
    std::int64_t drawn_frame_ = 0;
    Picture program_picture_;
    // Its memory is used again.
    Picture picture_;
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
