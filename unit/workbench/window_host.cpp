#include "unit/workbench/window_host.h"

#include <SDL.h>

#include <algorithm>
#include <chrono>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/board/virtual_unit.h"
#include "unit/picture/status_strip.h"

namespace unit {

namespace kernel = platform::kernel;
using platform::window::kScreenHeight;
using platform::window::kScreenWidth;

namespace {

// Between two pictures at most, in host milliseconds: a living video, and a still screen.
constexpr int kVideoPace = 33;
constexpr int kStillPace = 100;

void WakeEventLoop() {
    SDL_Event event{};
    event.type = SDL_USEREVENT;
    SDL_PushEvent(&event);
}

}  // namespace

bool WindowHost::DisplayAvailable(std::string& problem) {
    if (!SDL_getenv("DISPLAY") && !SDL_getenv("WAYLAND_DISPLAY")) {
        problem = "neither DISPLAY nor WAYLAND_DISPLAY is set";
        return false;
    }
    // Signals are the unit's own business.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_Init(SDL_INIT_VIDEO) == 0)
        return true;
    problem = SDL_GetError();
    return false;
}

WindowHost::WindowHost(VirtualUnit& unit, std::string card) : unit_(unit), card_(std::move(card)) {
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
    window_ = SDL_CreateWindow("Tolvane - virtual unit", SDL_WINDOWPOS_CENTERED,
                               SDL_WINDOWPOS_CENTERED, kScreenWidth, kScreenHeight + kStripHeight,
                               SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    renderer_ = SDL_CreateRenderer(window_, -1, 0);
    SDL_RenderSetLogicalSize(renderer_, kScreenWidth, kScreenHeight + kStripHeight);
    screen_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING,
                                kScreenWidth, kScreenHeight + kStripHeight);
    kernel::SetHardwareWaker(WakeEventLoop);
    unit_.OnScreenChange(WakeEventLoop);
}

WindowHost::~WindowHost() {
    kernel::SetHardwareWaker({});
    unit_.OnScreenChange({});
    SDL_DestroyTexture(screen_);
    SDL_DestroyRenderer(renderer_);
    SDL_DestroyWindow(window_);
    SDL_Quit();
}

void WindowHost::Run(const std::function<bool()>& asked_to_close) {
    Uint64 next_picture = 0;
    while (unit_.program().running() && !asked_to_close()) {
        const kernel::Time due = kernel::RunDueActions();
        const bool video = unit_.scaler().state().VideoShows();
        const Uint64 now = SDL_GetTicks64();
        const bool changed =
            unit_.screen_version() != shown_version_ || StatusLine() != shown_status_;
        if (changed || (video && now >= next_picture)) {
            Present();
            next_picture = now + kVideoPace;
        }
        const auto until_due =
            std::chrono::duration_cast<std::chrono::milliseconds>(due - kernel::Now()).count();
        const auto pace = static_cast<std::int64_t>(video ? kVideoPace : kStillPace);
        const auto wait = static_cast<int>(std::clamp<std::int64_t>(until_due, 0, pace));
        if (SDL_WaitEventTimeout(nullptr, wait) != 0 && !HandleEvents())
            return;
    }
}

bool WindowHost::HandleEvents() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
        switch (event.type) {
            case SDL_QUIT:
                return false;
            case SDL_WINDOWEVENT:
                Present();
                break;
            case SDL_KEYDOWN:
                if (event.key.repeat == 0)
                    HandleKey(event.key.keysym.sym);
                break;
            case SDL_MOUSEBUTTONDOWN:
            case SDL_MOUSEBUTTONUP:
            case SDL_MOUSEMOTION:
                HandleTouch(event);
                break;
            default:
                break;
        }
    }
    return true;
}

void WindowHost::HandleKey(int key) {
    const dvrsim::Dvr* dvr = unit_.dvr().dvr();
    switch (key) {
        case SDLK_c:
            if (dvr && dvr->CardIn())
                unit_.RemoveCard();
            else
                unit_.InsertCard(card_);
            break;
        case SDLK_e:
            unit_.SetExternalPower(!unit_.external_power());
            break;
        case SDLK_d:
            unit_.SetPlugged(!unit_.dvr().plugged());
            break;
        case SDLK_r:
            unit_.ResetDvr();
            break;
        case SDLK_w:
            unit_.WakeUp();
            break;
        default:
            break;
    }
}

void WindowHost::HandleTouch(const SDL_Event& event) {
    using platform::window::Touch;
    if (event.type == SDL_MOUSEMOTION) {
        if (finger_down_)
            unit_.Touch(Touch::kMove, event.motion.x, event.motion.y);
        return;
    }
    if (event.button.button != SDL_BUTTON_LEFT)
        return;
    finger_down_ = event.type == SDL_MOUSEBUTTONDOWN;
    unit_.Touch(finger_down_ ? Touch::kDown : Touch::kUp, event.button.x, event.button.y);
}

std::string WindowHost::StatusLine() const {
    const dvrsim::Dvr* dvr = unit_.dvr().dvr();
    std::string line = unit_.external_power() ? "external power on" : "external power OFF";
    if (!dvr)
        return line + "   a real DVR on the line";
    line += dvr->CardIn() ? "   card IN" : "   card out";
    line += unit_.dvr().plugged() ? "" : "   DVR UNPLUGGED";
    line += "   firmware " + dvr->FirmwareVersion();
    return line + (unit_.suspended() ? "   unit SUSPENDED" : "");
}

void WindowHost::Present() {
    shown_status_ = StatusLine();
    shown_version_ = unit_.screen_version();
    Picture picture = unit_.TakePicture();
    AppendStatusStrip(picture,
                      L"Keys:  C card in/out   E external power   D DVR plug   R reset DVR   "
                      L"W wake unit",
                      kernel::FromUtf8(shown_status_));
    SDL_UpdateTexture(screen_, nullptr, picture.pixels.data(),
                      picture.width * static_cast<int>(sizeof(std::uint32_t)));
    SDL_SetRenderDrawColor(renderer_, 0, 0, 0, 255);
    SDL_RenderClear(renderer_);
    SDL_RenderCopy(renderer_, screen_, nullptr, nullptr);
    SDL_RenderPresent(renderer_);
}

}  // namespace unit
