#pragma once

#include <cstdint>
#include <optional>

#include "unit/board/virtual_unit.h"
#include "unit/workbench/sdl_handles.h"

namespace unit {

// The unit's screen in the window: kept in a texture, which is filled again only when there is
// another picture. Hardware's thread.
class ScreenView {
  public:
    ScreenView(SDL_Renderer* renderer, VirtualUnit& unit);

    // Whether the video under the key colour moves.
    bool Lives() const;
    // Whether the picture of the last Draw is not what a person would see now.
    bool Outdated() const;

    // Draws the screen there, in pixels of the renderer's target.
    void Draw(const SDL_Rect& place, bool smooth);

  private:
    SDL_Renderer* const renderer_;
    VirtualUnit& unit_;
    SdlOwner<SDL_Texture> texture_;
    std::uint64_t drawn_version_ = 0;
};

}  // namespace unit
