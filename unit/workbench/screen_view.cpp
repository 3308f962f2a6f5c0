#include "unit/workbench/screen_view.h"

#include <algorithm>

#include "platform/window/screen.h"

namespace unit {

using platform::window::kScreenHeight;
using platform::window::kScreenWidth;

namespace {

POINT OnScreen(const Area& screen, Sint32 x, Sint32 y) {
    const auto within = [](float place, float size, int pixels) {
        const int pixel = static_cast<int>(place / size * static_cast<float>(pixels));
        return std::clamp(pixel, 0, pixels - 1);
    };
    return {within(static_cast<float>(x) - screen.x, screen.width, kScreenWidth),
            within(static_cast<float>(y) - screen.y, screen.height, kScreenHeight)};
}

}  // namespace

ScreenView::ScreenView(SDL_Renderer* renderer, VirtualUnit& unit)
    : renderer_(renderer),
      unit_(unit),
      texture_(SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING,
                                 kScreenWidth, kScreenHeight)) {
    SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_NONE);
}

bool ScreenView::Moving() const {
    const dvrsim::Dvr* const dvr = unit_.dvr().dvr();
    return !unit_.suspended() && unit_.scaler().state().VideoShows() && dvr && dvr->HasPicture();
}

bool ScreenView::Outdated() const {
    return unit_.screen_version() != drawn_version_ || Moving();
}

void ScreenView::Draw(const SDL_Rect& place, bool smooth) {
    if (Outdated()) {
        drawn_version_ = unit_.screen_version();
        const Picture picture = unit_.TakePicture();
        SDL_UpdateTexture(texture_.get(), nullptr, picture.pixels.data(),
                          picture.width * static_cast<int>(sizeof picture.pixels[0]));
    }
    SDL_SetTextureScaleMode(texture_.get(), smooth ? SDL_ScaleModeLinear : SDL_ScaleModeNearest);
    SDL_RenderCopy(renderer_, texture_.get(), nullptr, &place);
}

void MouseFinger::Take(const SDL_Event& event, const Area& screen) {
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
