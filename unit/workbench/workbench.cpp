#include "unit/workbench/workbench.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include "platform/kernel/scheduler.h"
#include "unit/workbench/keys.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

constexpr double kPicture = 1.0 / 60;
// The panel shows what passes by so often at most, and a waiting loop looks for it.
constexpr double kNews = 1.0 / 20;
// What nobody tells, such as the DVR's state, is looked at so often.
constexpr double kRefresh = 0.25;
constexpr double kIdle = 0.1;
// ImGui wants some frames after an event until everything has followed it.
constexpr int kFramesToSettle = 3;
constexpr float kBezel = 3;

double Seconds() {
    return static_cast<double>(SDL_GetPerformanceCounter()) /
           static_cast<double>(SDL_GetPerformanceFrequency());
}

// Whether the unit's screen is not drawn in whole multiples of its pixels.
bool Smooth(const SDL_Rect& screen) {
    return screen.w % platform::window::kScreenWidth != 0;
}

// One wake-up in the queue is enough, however often the kernel asks.
std::atomic<bool> g_wake_pending{false};

void WakeEventLoop() {
    if (g_wake_pending.exchange(true))
        return;
    SDL_Event event{};
    event.type = SDL_USEREVENT;
    SDL_PushEvent(&event);
}

}  // namespace

Workbench::Workbench(VirtualUnit& unit, Operator& op, const Options& options)
    : unit_(unit),
      options_(options),
      window_(options.kiosk),
      history_(unit.events()),
      commands_(UnitCommands(), op),
      desk_{unit, commands_, history_, meter_},
      finger_(op),
      screen_(window_.renderer(), unit) {
    desk_.scale = window_.scale();
    desk_.dock_height *= desk_.scale;
    if (!options.kiosk)
        canvas_.emplace(window_);
    kernel::SetHardwareWaker(WakeEventLoop);
    unit_.OnScreenChange(WakeEventLoop);
}

Workbench::~Workbench() {
    kernel::SetHardwareWaker({});
    unit_.OnScreenChange({});
}

void Workbench::Run(const std::function<bool()>& asked_to_close) {
    while (unit_.program().running() && !asked_to_close()) {
        const kernel::Time due = kernel::RunDueActions();
        DrawWhenDue(Seconds());
        const std::chrono::duration<double> until_due = due - kernel::Now();
        Wait(due == kernel::kNever ? kIdle : until_due.count() / options_.speed);
        if (!HandleEvents())
            return;
    }
}

void Workbench::DrawWhenDue(double now) {
    if (now < next_picture_)
        return;
    if (now >= next_news_) {
        next_news_ = now + kNews;
        panel_outdated_ |= history_.Update() || now >= next_refresh_;
    }
    panel_outdated_ |= repaint_ || frames_to_settle_ > 0;
    const bool panel = PanelShows() && panel_outdated_;
    if (!panel && !repaint_ && !screen_.Outdated())
        return;
    if (panel) {
        panel_outdated_ = false;
        next_refresh_ = now + kRefresh;
    }
    DrawPicture(panel);
    next_picture_ = std::max(next_picture_ + kPicture, now);
    meter_.Count(Seconds(), screen_.Lives() || frames_to_settle_ > 0);
}

void Workbench::DrawPicture(bool with_panel) {
    repaint_ = false;
    if (with_panel) {
        frames_to_settle_ = std::max(0, frames_to_settle_ - 1);
        SettlePanel();
        canvas_->Redraw([this](const Fonts& fonts) { DrawPanel(fonts); });
    }
    const float density = window_.density();
    const Area place = ScreenPlace();
    const auto pixels = [density](float units) {
        return static_cast<int>(std::lround(units * density));
    };
    const SDL_Rect screen{pixels(place.x), pixels(place.y), pixels(place.width),
                          pixels(place.height)};
    SDL_Renderer* const renderer = window_.renderer();
    if (!PanelShows()) {
        SetDrawColor(renderer, color::kBlack);
        SDL_RenderClear(renderer);
        screen_.Draw(screen, Smooth(screen));
    } else {
        canvas_->ShowAround(screen);
        const int edge = pixels(kBezel * desk_.scale);
        const SDL_Rect bezel{screen.x - edge, screen.y - edge, screen.w + 2 * edge,
                             screen.h + 2 * edge};
        SetDrawColor(renderer, color::kBezel);
        SDL_RenderFillRect(renderer, &bezel);
        screen_.Draw(screen, Smooth(screen));
        canvas_->ShowOver(screen);
    }
    SDL_RenderPresent(renderer);
}

void Workbench::SettlePanel() {
    // A click is followed in one frame; that a text field has the keyboard is known in the next.
    for (int frame = 0; panel_behind_ && frame < 2; ++frame)
        canvas_->Follow([this](const Fonts& fonts) { DrawPanel(fonts); });
    panel_behind_ = false;
}

void Workbench::DrawPanel(const Fonts& fonts) {
    desk_.fonts = fonts;
    const bool was_full_screen = desk_.full_screen;
    panel_.Draw(desk_, CurrentLayout());
    if (desk_.full_screen != was_full_screen)
        repaint_ = true;
}

Layout Workbench::CurrentLayout() const {
    const SDL_Point size = window_.size();
    return PlaceAll(static_cast<float>(size.x), static_cast<float>(size.y), desk_.scale,
                    desk_.dock_height, desk_.scaling);
}

Area Workbench::ScreenPlace() const {
    if (PanelShows())
        return CurrentLayout().screen;
    const SDL_Point size = window_.size();
    return PlaceScreen({0, 0, static_cast<float>(size.x), static_cast<float>(size.y)},
                       options_.kiosk ? Scaling::kSmooth : desk_.scaling);
}

void Workbench::Wait(double until_due) const {
    const bool moving = repaint_ || frames_to_settle_ > 0 || screen_.Outdated();
    const double until_picture = moving ? next_picture_ - Seconds() : kIdle;
    const double wait = std::clamp(std::min(until_due, until_picture), 0.0, kIdle);
    // SDL counts in milliseconds; what is left of one is slept apart.
    if (const int whole = static_cast<int>(wait * 1000); whole > 0)
        SDL_WaitEventTimeout(nullptr, whole);
    else if (wait > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(wait));
}

bool Workbench::HandleEvents() {
    SDL_Event event;
    g_wake_pending = false;
    // What is left of many events waits for the next picture.
    const double end = Seconds() + kPicture / 2;
    while (Seconds() < end && SDL_PollEvent(&event) != 0) {
        if (event.type == SDL_USEREVENT)
            continue;
        if (event.type == SDL_QUIT)
            return false;
        ShowToPanel(event);
        switch (event.type) {
            case SDL_WINDOWEVENT:
            case SDL_RENDER_TARGETS_RESET:
                repaint_ = true;
                break;
            case SDL_KEYDOWN:
                if (event.key.repeat == 0 && (event.key.keysym.mod & (KMOD_CTRL | KMOD_ALT)) == 0)
                    HandleKey(event.key.keysym.sym);
                break;
            case SDL_MOUSEBUTTONDOWN:
            case SDL_MOUSEBUTTONUP:
            case SDL_MOUSEMOTION:
                // What lies over the screen for a moment, a list or a menu, comes first.
                if (!PanelShows() || !ImGui::IsPopupOpen("", ImGuiPopupFlags_AnyPopup))
                    finger_.Follow(event, ScreenPlace());
                break;
            default:
                break;
        }
    }
    return true;
}

void Workbench::ShowToPanel(const SDL_Event& event) {
    if (!PanelShows())
        return;
    // The panel sees buttons and keys one by one, and the mouse where it is pressed, however fast
    // they come: what a key means depends on where the last click went.
    const bool press = event.type == SDL_KEYDOWN || event.type == SDL_KEYUP ||
                       event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEBUTTONUP;
    if (press)
        SettlePanel();
    panel_behind_ |= press || event.type == SDL_MOUSEMOTION;
    canvas_->Take(event);
    frames_to_settle_ = kFramesToSettle;
}

void Workbench::HandleKey(SDL_Keycode key) {
    const bool typing = PanelShows() && ImGui::GetIO().WantTextInput;
    const bool function_key = key >= SDLK_F1 && key <= SDLK_F12;
    if (typing && !function_key)
        return;
    FollowKey(desk_, key);
    window_.SetFullScreen(options_.kiosk || desk_.full_screen);
    repaint_ = true;
}

}  // namespace unit
