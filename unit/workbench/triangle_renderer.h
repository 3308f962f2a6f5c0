#pragma once

#include <imgui.h>

#include "unit/workbench/sdl_handles.h"

namespace unit {

// Draws the panel's triangle lists with SDL's renderer. Hardware's thread.
class TriangleRenderer {
  public:
    explicit TriangleRenderer(SDL_Renderer* renderer);

    // Takes the pixels of the fonts that the context has now.
    void LoadFonts();

    // Into the renderer's current target.
    void Draw(const ImDrawData& data);

  private:
    void DrawList(const ImDrawList& list, const ImDrawData& data);

    SDL_Renderer* const renderer_;
    SdlOwner<SDL_Texture> fonts_;
};

}  // namespace unit
