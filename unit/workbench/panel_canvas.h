#pragma once

#include <SDL.h>
#include <imgui.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "unit/workbench/changed_parts.h"
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

    // Draws a part of the picture, in pixels, into the renderer's current target.
    void Draw(const ImDrawData& data, const SDL_Rect& part);

  private:
    // The triangles of a command that touch the box, in units, into vertices_ and indices_.
    void Collect(const ImDrawList& list, const ImDrawCmd& command, const ImVec4& box);

    SDL_Renderer* const renderer_;
    SdlOwner<SDL_Texture> fonts_;
    std::vector<ImDrawVert> vertices_;
    std::vector<int> indices_;
    // For each vertex of a list its place in vertices_, or kNone.
    static constexpr int kNone = -1;
    std::vector<int> places_;
};

// The panel's picture: drawn into a texture when the panel changed, and copied into the window for
// every picture. Host thread.
class PanelCanvas {
  public:
    PanelCanvas(const DesktopWindow& window, Theme theme);
    ~PanelCanvas();
    PanelCanvas(const PanelCanvas&) = delete;
    PanelCanvas& operator=(const PanelCanvas&) = delete;

    // Passes an event to the panel.
    void Take(const SDL_Event& event);

    // Takes effect with the next frame.
    void SetTheme(Theme theme);

    // Runs one ImGui frame and draws what changed in the panel; `draw` makes its content. Returns
    // the parts that changed, in pixels.
    std::vector<SDL_Rect> Redraw(const std::function<void(const Fonts&)>& draw);

    // Runs one ImGui frame without drawing, so that the panel reacts to the events it took.
    void Update(const std::function<void(const Fonts&)>& draw);

    // The renderer lost what was drawn: the next Redraw draws all.
    void Forget() { changed_.Forget(); }

    // Copies the panel into the renderer's target, without the part that the unit's screen covers.
    void ShowAround(const SDL_Rect& screen) const;
    // Copies what lies over the unit's screen, such as tips and lists.
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
    ChangedParts changed_;
};

}  // namespace unit
