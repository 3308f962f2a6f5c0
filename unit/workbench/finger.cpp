#include "unit/workbench/finger.h"

#include <algorithm>

#include "platform/window/screen.h"

namespace unit {
namespace {

POINT OnScreen(const Area& screen, Sint32 x, Sint32 y) {
    const auto within = [](float place, float size, int pixels) {
        const int pixel = static_cast<int>(place / size * static_cast<float>(pixels));
        return std::clamp(pixel, 0, pixels - 1);
    };
    return {
        within(static_cast<float>(x) - screen.x, screen.width, platform::window::kScreenWidth),
        within(static_cast<float>(y) - screen.y, screen.height, platform::window::kScreenHeight)};
}

}  // namespace

void Finger::Follow(const SDL_Event& event, const Area& screen) {
    if (operator_.busy())
        return;
    if (event.type == SDL_MOUSEMOTION) {
        if (down_)
            operator_.MoveFinger(OnScreen(screen, event.motion.x, event.motion.y));
        return;
    }
    if (event.button.button != SDL_BUTTON_LEFT)
        return;
    const float x = static_cast<float>(event.button.x);
    const float y = static_cast<float>(event.button.y);
    if (event.type == SDL_MOUSEBUTTONDOWN && screen.Contains(x, y)) {
        down_ = true;
        operator_.Press(OnScreen(screen, event.button.x, event.button.y));
    } else if (event.type == SDL_MOUSEBUTTONUP && down_) {
        down_ = false;
        operator_.MoveFinger(OnScreen(screen, event.button.x, event.button.y));
        operator_.Release();
    }
}

}  // namespace unit
