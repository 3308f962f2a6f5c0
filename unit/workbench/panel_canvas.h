#pragma once

#include <SDL.h>
#include <imgui.h>

#include <array>
#include <functional>
#include <string>

#include "unit/workbench/desktop_window.h"
#include "unit/workbench/theme.h"

namespace unit {

// The mouse after the last event that the panel took. ImGui's SDL backend asks for the current
// state instead, which can be newer than the event: clicks would miss.
class MouseState {
  public:
    void Take(const SDL_Event& event);

    // Sets the input of the next ImGui frame.
    void Give(ImGuiIO& io) const;

  private:
    // In ImGui's order.
    static constexpr std::array<int, 3> kButtons = {SDL_BUTTON_LEFT, SDL_BUTTON_RIGHT,
                                                    SDL_BUTTON_MIDDLE};

    static const ImVec2 kNowhere;

    ImVec2 place_ = kNowhere;
    std::array<bool, kButtons.size()> down_{};
};

// Draws ImGui's triangle lists with SDL's renderer.
class TriangleRenderer {
  public:
    explicit TriangleRenderer(SDL_Renderer* renderer);

    // Makes a texture of the fonts that the ImGui context has now.
    void LoadFonts();

    // Draws into the renderer's current target.
    void Draw(const ImDrawData& data);

  private:
    void DrawList(const ImDrawList& list, const ImDrawData& data);

    SDL_Renderer* const renderer_;
    SdlOwner<SDL_Texture> fonts_;
};

// The panel's picture: drawn into a texture when the panel changed, and copied into the window for
// every picture. Host thread.
class PanelCanvas {
  public:
    explicit PanelCanvas(const DesktopWindow& window);
    ~PanelCanvas();
    PanelCanvas(const PanelCanvas&) = delete;
    PanelCanvas& operator=(const PanelCanvas&) = delete;

    // Passes an event to the panel.
    void Take(const SDL_Event& event);

    // Runs one ImGui frame and draws the panel; `draw` makes its content.
    void Redraw(const std::function<void(const Fonts&)>& draw);

    // Runs one ImGui frame without drawing, so that the panel reacts to the events it took.
    void Update(const std::function<void(const Fonts&)>& draw);

    // Copies the panel into the renderer's target, without the part that the unit's screen covers.
    void ShowAround(const SDL_Rect& screen) const;
    // Copies tips and lists that lie over the unit's screen.
    void ShowOver(const SDL_Rect& screen) const;

  private:
    void BeginFrame();
    // Adapts fonts and texture to the window's size and density.
    void Fit();
    // Whether some part of the panel lies over the unit's screen.
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
