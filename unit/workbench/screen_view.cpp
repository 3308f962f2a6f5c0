#include "unit/workbench/screen_view.h"

namespace unit {

using platform::window::kScreenHeight;
using platform::window::kScreenWidth;

ScreenView::ScreenView(SDL_Renderer* renderer, VirtualUnit& unit)
    : renderer_(renderer),
      unit_(unit),
      texture_(SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING,
                                 kScreenWidth, kScreenHeight)) {
    SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_NONE);
}

bool ScreenView::Lives() const {
    const dvrsim::Dvr* const dvr = unit_.dvr().dvr();
    return !unit_.suspended() && unit_.scaler().state().VideoShows() && dvr && dvr->HasPicture();
}

bool ScreenView::Outdated() const {
    return unit_.screen_version() != drawn_version_ || Lives();
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

}  // namespace unit
