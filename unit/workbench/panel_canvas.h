#pragma once

#include <functional>
#include <string>

#include "unit/workbench/desktop_window.h"
#include "unit/workbench/mouse_state.h"
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

    // The same without a picture: the panel follows what it has taken.
    void Follow(const std::function<void(const Fonts&)>& draw);

    // Copies it into the renderer's target, all but the unit's screen; and then onto that what lies
    // over it for a moment, such as a tip.
    void ShowAround(const SDL_Rect& screen) const;
    void ShowOver(const SDL_Rect& screen) const;

  private:
    void BeginFrame();
    // Fonts and texture as the window's size and density want them now.
    void Fit();
    // Whether something of the panel lies over that part.
    bool Covers(const SDL_Rect& screen) const;

    const DesktopWindow& window_;
    TriangleRenderer triangles_;
    MouseState mouse_;
    Fonts fonts_;
    float density_ = 0;
    SDL_Point pixels_{};
    SdlOwner<SDL_Texture> texture_;
};

}  // namespace unit
