#include "unit/workbench/workbench.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

#include "platform/kernel/scheduler.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

// The limit for handling the events of one loop.
constexpr double kEventTime = 1.0 / 120;
constexpr float kBezel = 3;

double Seconds() {
    return static_cast<double>(SDL_GetPerformanceCounter()) /
           static_cast<double>(SDL_GetPerformanceFrequency());
}

// Whether the unit's screen is scaled by a factor that is not a whole number.
bool Smooth(const SDL_Rect& screen) {
    return screen.w % platform::window::kScreenWidth != 0;
}

// Keeps the event queue from filling up: one wake-up in it is enough.
std::atomic<bool> g_wake_pending{false};

void WakeEventLoop() {
    if (g_wake_pending.exchange(true))
        return;
    SDL_Event event{};
    event.type = SDL_USEREVENT;
    SDL_PushEvent(&event);
}

// Until there is an event, at most for this many seconds.
void Wait(double seconds) {
    // SDL's time-out counts whole milliseconds.
    if (const int milliseconds = static_cast<int>(seconds * 1000); milliseconds > 0)
        SDL_WaitEventTimeout(nullptr, milliseconds);
    else if (seconds > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

}  // namespace

Workbench::Workbench(VirtualUnit& unit, Operator& op, const Options& options)
    : unit_(unit),
      options_(options),
      window_(options.kiosk),
      history_(unit.events()),
      commands_(UnitCommands(), op),
      context_{unit, commands_, history_},
      finger_(op),
      screen_(window_.renderer(), unit) {
    context_.scale = window_.scale();
    context_.dock_height *= context_.scale;
    if (!options.kiosk)
        canvas_.emplace(window_);
    kernel::SetHostThreadWaker(WakeEventLoop);
    unit_.OnScreenChange(WakeEventLoop);
}

Workbench::~Workbench() {
    kernel::SetHostThreadWaker({});
    unit_.OnScreenChange({});
}

void Workbench::Run(const std::function<bool()>& asked_to_close) {
    const auto read_news = [this] { return history_.Update(); };
    while (unit_.program().running() && !asked_to_close()) {
        const kernel::Time due_action = kernel::RunDueActions();
        const auto due = redraw_.Next(Seconds(), PanelShows(), screen_.Outdated(), read_news);
        if (due.picture) {
            DrawPicture(due.panel);
            meter_.Count(Seconds(), screen_.Moving() || redraw_.panel_settles());
        }
        const std::chrono::duration<double> until_action = due_action - kernel::Now();
        const double idle = redraw_.Idle(Seconds(), screen_.Outdated());
        Wait(due_action == kernel::kNever ? idle
                                          : std::min(until_action.count() / options_.speed, idle));
        if (!HandleEvents())
            return;
    }
}

void Workbench::DrawPicture(bool with_panel) {
    if (with_panel) {
        context_.picture_rate = meter_.rate();
        UpdatePanel();
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
        const int edge = pixels(kBezel * context_.scale);
        const SDL_Rect bezel{screen.x - edge, screen.y - edge, screen.w + 2 * edge,
                             screen.h + 2 * edge};
        SetDrawColor(renderer, color::kBezel);
        SDL_RenderFillRect(renderer, &bezel);
        screen_.Draw(screen, Smooth(screen));
        canvas_->ShowOver(screen);
    }
    SDL_RenderPresent(renderer);
}

void Workbench::UpdatePanel() {
    // ImGui handles a click in one frame and gives the keyboard to a text field in the next.
    for (int frame = 0; panel_behind_ && frame < 2; ++frame)
        canvas_->Update([this](const Fonts& fonts) { DrawPanel(fonts); });
    panel_behind_ = false;
}

void Workbench::DrawPanel(const Fonts& fonts) {
    context_.fonts = fonts;
    const bool was_full_screen = context_.full_screen;
    panel_.Draw(context_, CurrentLayout());
    if (context_.full_screen != was_full_screen)
        redraw_.Repaint();
}

Layout Workbench::CurrentLayout() const {
    const SDL_Point size = window_.size();
    return PlaceAll(static_cast<float>(size.x), static_cast<float>(size.y), context_.scale,
                    context_.dock_height, context_.scaling);
}

Area Workbench::ScreenPlace() const {
    if (PanelShows())
        return CurrentLayout().screen;
    const SDL_Point size = window_.size();
    return PlaceScreen({0, 0, static_cast<float>(size.x), static_cast<float>(size.y)},
                       options_.kiosk ? Scaling::kSmooth : context_.scaling);
}

bool Workbench::HandleEvents() {
    SDL_Event event;
    g_wake_pending = false;
    const double end = Seconds() + kEventTime;
    while (Seconds() < end && SDL_PollEvent(&event) != 0) {
        if (event.type == SDL_USEREVENT)
            continue;
        if (event.type == SDL_QUIT)
            return false;
        PassToPanel(event);
        switch (event.type) {
            case SDL_WINDOWEVENT:
            case SDL_RENDER_TARGETS_RESET:
                redraw_.Repaint();
                break;
            case SDL_KEYDOWN:
                if (event.key.repeat == 0 && (event.key.keysym.mod & (KMOD_CTRL | KMOD_ALT)) == 0)
                    HandleKey(event.key.keysym.sym);
                break;
            case SDL_MOUSEBUTTONDOWN:
            case SDL_MOUSEBUTTONUP:
            case SDL_MOUSEMOTION:
                // An open list lies over the screen and gets the mouse.
                if (!PanelShows() || !ImGui::IsPopupOpen("", ImGuiPopupFlags_AnyPopup))
                    finger_.Take(event, ScreenPlace());
                break;
            default:
                break;
        }
    }
    return true;
}

void Workbench::PassToPanel(const SDL_Event& event) {
    if (!PanelShows())
        return;
    // The panel handles presses one by one, however fast they come: the meaning of a key depends on
    // the last click.
    const bool press = event.type == SDL_KEYDOWN || event.type == SDL_KEYUP ||
                       event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEBUTTONUP;
    if (press)
        UpdatePanel();
    panel_behind_ |= press || event.type == SDL_MOUSEMOTION;
    canvas_->Take(event);
    redraw_.LetPanelSettle();
}

void Workbench::HandleKey(SDL_Keycode key) {
    const bool typing = PanelShows() && ImGui::GetIO().WantTextInput;
    const bool function_key = key >= SDLK_F1 && key <= SDLK_F12;
    if (typing && !function_key)
        return;
    PressKey(context_, key);
    window_.SetFullScreen(options_.kiosk || context_.full_screen);
    redraw_.Repaint();
}

}  // namespace unit
