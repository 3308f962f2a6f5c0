#pragma once

#include <functional>
#include <string>

#include "unit/workbench/desktop_window.h"
#include "unit/workbench/theme.h"
#include "unit/workbench/triangle_renderer.h"

namespace unit {

// The panel's picture: drawn into a texture when something in it has changed, and copied over the
// window's picture every time. Hardware's thread.
class PanelCanvas {
  public:
    explicit PanelCanvas(const DesktopWindow& window);
    ~PanelCanvas();
    PanelCanvas(const PanelCanvas&) = delete;
    PanelCanvas& operator=(const PanelCanvas&) = delete;

    // Lets the panel see an event.
    void Take(const SDL_Event& event);

    // Draws the panel anew: `draw` says what is in it, with fonts fit for the display.
    void Redraw(const std::function<void(const Fonts&)>& draw);

    // Copies it over what the renderer's target holds.
    void Show() const;

  private:
    // Fonts and texture as the window's size and density want them now.
    void Fit();

    const DesktopWindow& window_;
    TriangleRenderer triangles_;
    Fonts fonts_;
    float density_ = 0;
    SDL_Point pixels_{};
    SdlOwner<SDL_Texture> texture_;
};

}  // namespace unit
