#include "unit/workbench/mouse_state.h"

#include <cfloat>

namespace unit {

const ImVec2 MouseState::kNowhere{-FLT_MAX, -FLT_MAX};

void MouseState::Take(const SDL_Event& event) {
    const auto go_to = [this](Sint32 x, Sint32 y) {
        place_ = {static_cast<float>(x), static_cast<float>(y)};
    };
    switch (event.type) {
        case SDL_MOUSEMOTION:
            go_to(event.motion.x, event.motion.y);
            break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            go_to(event.button.x, event.button.y);
            for (std::size_t button = 0; button < kButtons.size(); ++button)
                if (event.button.button == kButtons[button])
                    down_[button] = event.type == SDL_MOUSEBUTTONDOWN;
            break;
        case SDL_WINDOWEVENT:
            if (event.window.event == SDL_WINDOWEVENT_LEAVE && !down_[0])
                place_ = kNowhere;
            break;
        default:
            break;
    }
}

void MouseState::Give(ImGuiIO& io) const {
    io.MousePos = place_;
    for (std::size_t button = 0; button < kButtons.size(); ++button)
        io.MouseDown[button] = down_[button];
}

}  // namespace unit
