#pragma once

#include <SDL.h>
#include <imgui.h>

#include <array>

namespace unit {

// Where the mouse was and which buttons were down at the last event that the panel has taken. What
// the platform backend finds may be older or newer than that, and a click would miss.
class MouseState {
  public:
    void Take(const SDL_Event& event);

    // Into the frame that begins.
    void Give(ImGuiIO& io) const;

  private:
    // By their numbers, from the left one on.
    static constexpr std::array<int, 3> kButtons = {SDL_BUTTON_LEFT, SDL_BUTTON_RIGHT,
                                                    SDL_BUTTON_MIDDLE};

    static const ImVec2 kNowhere;

    ImVec2 place_ = kNowhere;
    std::array<bool, kButtons.size()> down_{};
};

}  // namespace unit
