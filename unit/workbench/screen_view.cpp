#include "unit/workbench/screen_view.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/clock.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/screen.h"

namespace unit {

using platform::window::kScreenHeight;
using platform::window::kScreenWidth;

namespace {

constexpr double kFramesASecond = 30;

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
    // The picture stands while the clock is paused.
    return !platform::kernel::ClockPaused() && !unit_.suspended() &&
           unit_.scaler().state().VideoShows() && dvr && dvr->HasPicture();
}

double ScreenView::VideoFrames() const {
    const auto host_time = platform::kernel::Now() / unit_.time_scale();
    return std::chrono::duration<double>(host_time).count() * kFramesASecond;
}

std::int64_t ScreenView::VideoFrame() const {
    return static_cast<std::int64_t>(VideoFrames());
}

double ScreenView::UntilChange() const {
    if (!Moving())
        return 1;
    return (static_cast<double>(drawn_frame_ + 1) - VideoFrames()) / kFramesASecond;
}

bool ScreenView::Outdated() const {
    return unit_.screen_version() != drawn_version_ || (Moving() && VideoFrame() != drawn_frame_);
}

void ScreenView::Update() {
    drawn_version_ = unit_.screen_version();
    drawn_frame_ = VideoFrame();
    picture_ = unit_.TakePicture(std::move(picture_));
    SDL_UpdateTexture(texture_.get(), nullptr, picture_.pixels.data(),
                      picture_.width * static_cast<int>(sizeof picture_.pixels[0]));
    if (ProgramHost::HasWindow())
        std::swap(picture_, program_picture_);
}

void ScreenView::Draw(const SDL_Rect& place, bool smooth) {
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
