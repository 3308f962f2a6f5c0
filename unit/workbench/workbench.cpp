#include "unit/workbench/workbench.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>
#include <utility>

#include "platform/kernel/scheduler.h"
#include "unit/picture/screen_reader.h"
#include "unit/workbench/gloss_overlay.h"

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

SDL_Rect Grown(const SDL_Rect& rectangle, int edge) {
    return {rectangle.x - edge, rectangle.y - edge, rectangle.w + 2 * edge, rectangle.h + 2 * edge};
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

WorkbenchWindow::WorkbenchWindow(const std::string& name, bool kiosk)
    : kiosk_(kiosk),
      view_(kiosk ? ViewSettings() : LoadSettings(SettingsFile())),
      desktop_("Tolvane - virtual unit: " + name, kiosk, view_.width, view_.height),
      canvas_(desktop_, view_.theme) {
    // Who shows only the unit's screen needs no introduction to the panel.
    view_.introduced |= kiosk;
    if (view_.dock_height < 1)
        view_.dock_height = kInitialDockHeight * desktop_.scale();
}

WorkbenchWindow::~WorkbenchWindow() {
    if (kiosk_)
        return;
    if (!desktop_.full_screen()) {
        view_.width = desktop_.size().x;
        view_.height = desktop_.size().y;
    }
    SaveSettings(SettingsFile(), view_);
}

Workbench::Workbench(WorkbenchWindow& window, VirtualUnit& unit, Operator& op, Options options)
    : unit_(unit),
      options_(std::move(options)),
      shell_(window),
      window_(window.desktop_),
      canvas_(window.canvas_),
      history_(unit.events()),
      commands_(UnitCommands(), op),
      context_{unit, commands_, history_, window.view_},
      finger_(op),
      screen_(window_.renderer(), unit),
      theme_(window.view_.theme) {
    context_.scale = window_.scale();
    context_.full_screen = window_.full_screen();
    kernel::SetHostThreadWaker(WakeEventLoop);
    unit_.OnScreenChange(WakeEventLoop);
    ApplyView();
}

Workbench::~Workbench() {
    kernel::SetHostThreadWaker({});
    unit_.OnScreenChange({});
}

Workbench::Leave Workbench::Run(const std::function<bool()>& asked_to_close, ReadVerdict verdict) {
    read_verdict_ = verdict ? std::move(verdict) : [this] { return ProgramVerdict(); };
    const auto read_news = [this] { return history_.Update(); };
    while (!leave_ && !asked_to_close()) {
        const kernel::Time due_action = kernel::RunDueActions();
        CheckVerdict();
        const auto due = redraw_.Next(Seconds(), screen_.Outdated(), read_news);
        if (due.picture) {
            DrawPicture(due.panel, due.all);
            meter_.Count(Seconds(), screen_.Moving() || redraw_.panel_settles());
        }
        const std::chrono::duration<double> until_action = due_action - kernel::Now();
        const double idle = std::max(
            0.0, std::min(redraw_.Idle(Seconds(), screen_.Outdated()), screen_.UntilChange()));
        // While the clock is paused, only what is overdue can come due.
        const bool none_comes =
            due_action == kernel::kNever || (kernel::ClockPaused() && until_action.count() > 0);
        Wait(none_comes ? idle : std::min(until_action.count() / kernel::ClockSpeed(), idle));
        if (!HandleEvents())
            return Leave::kClosed;
    }
    return leave_.value_or(Leave::kClosed);
}

std::optional<Verdict> Workbench::ProgramVerdict() const {
    if (unit_.program().running())
        return std::nullopt;
    Verdict verdict;
    verdict.good = result_ == Result::kSuccess;
    verdict.headline = verdict.good ? "The update has succeeded" : "The update has not succeeded";
    verdict.details.emplace_back(
        verdict.good                  ? "The program showed the success screen before it ended."
        : result_ == Result::kFailure ? "The program showed the failure screen before it ended."
                                      : "The program ended before it showed a result.");
    verdict.details.push_back(
        "Exit status of the program: " + std::to_string(unit_.program().exit_code()) + ".");
    return verdict;
}

void Workbench::CheckVerdict() {
    if (over_)
        return;
    std::optional<Verdict> verdict = read_verdict_();
    if (!verdict)
        return;
    over_ = true;
    if (verdict->good && options_.more) {
        leave_ = Leave::kNext;
        return;
    }
    if (!options_.note.empty())
        verdict->details.push_back(options_.note);
    context_.ended = verdict->headline + ".";
    card_.Show(std::move(*verdict), options_.more);
    ApplyView();
    redraw_.LetPanelSettle();
}

void Workbench::DrawPicture(bool panel, bool all) {
    const bool new_screen = screen_.Outdated();
    if (new_screen) {
        screen_.Update();
        if (const auto result = ShownResult(ScreenReader(unit_.Screen()).Texts()))
            result_ = result;
    }
    std::vector<SDL_Rect> parts;
    if (panel || all) {
        context_.picture_rate = meter_.rate();
        UpdatePanel();
        parts = canvas_.Redraw([this](const Fonts& fonts) { DrawPanel(fonts); });
    }
    const SDL_Rect screen = ScreenPixels();
    const SDL_Point size = window_.pixels();
    const bool moved = SDL_RectEquals(&screen, &drawn_screen_) == SDL_FALSE;
    drawn_screen_ = screen;
    if (all || moved || !window_.KeepsContent())
        parts = {{0, 0, size.x, size.y}};
    // A part of the scaled screen would have other edges than the whole.
    const SDL_Rect bezel = Bezel(screen);
    bool screen_due = new_screen;
    for (const SDL_Rect& part : parts)
        screen_due |= SDL_HasIntersection(&part, &bezel) == SDL_TRUE;
    if (screen_due)
        parts.push_back(new_screen && parts.empty() ? screen : bezel);
    if (parts.empty())
        return;
    SDL_Renderer* const renderer = window_.renderer();
    for (const SDL_Rect& part : parts) {
        if (window_.KeepsContent())
            SDL_RenderSetClipRect(renderer, &part);
        Compose(screen);
    }
    SDL_RenderSetClipRect(renderer, nullptr);
    window_.Present(parts);
}

SDL_Rect Workbench::Bezel(const SDL_Rect& screen) const {
    const int edge = static_cast<int>(std::lround(kBezel * context_.scale * window_.density()));
    return Grown(screen, PanelShows() ? edge : 0);
}

// The window's whole picture.
void Workbench::Compose(const SDL_Rect& screen) {
    SDL_Renderer* const renderer = window_.renderer();
    const SDL_Point size = window_.pixels();
    const SDL_Rect whole{0, 0, size.x, size.y};
    if (PanelShows()) {
        const SDL_Rect bezel = Bezel(screen);
        canvas_.ShowAround(bezel);
        SetDrawColor(renderer, CurrentPalette().bezel);
        // Only the edges: the screen covers the rest.
        for (SDL_Rect edge = bezel; edge.x < screen.x; edge = Grown(edge, -1))
            SDL_RenderDrawRect(renderer, &edge);
        screen_.Draw(screen, Smooth(screen));
        canvas_.ShowOver(bezel);
    } else {
        SetDrawColor(renderer, color::kBlack);
        SDL_RenderFillRect(renderer, &whole);
        screen_.Draw(screen, Smooth(screen));
        canvas_.ShowOver(whole);
    }
}

void Workbench::UpdatePanel() {
    // ImGui handles a click in one frame and gives the keyboard to a text field in the next.
    for (int frame = 0; panel_behind_ && frame < 2; ++frame)
        canvas_.Update([this](const Fonts& fonts) { DrawPanel(fonts); });
    panel_behind_ = false;
}

void Workbench::DrawPanel(const Fonts& fonts) {
    context_.fonts = fonts;
    if (PanelShows())
        panel_.Draw(context_, CurrentLayout());
    const Area screen = ScreenPlace();
    DrawGlosses(context_, screen);
    if (!over_)
        DrawFirstRunCard(context_, screen);
    Apply(card_.Draw(context_, screen));
    if (context_.restart)
        leave_ = Leave::kRestart;
}

void Workbench::Apply(AfterRun wish) {
    switch (wish) {
        case AfterRun::kNothing:
            break;
        case AfterRun::kSave:
            card_.SetSaved(SaveRun(history_, screen_.program_picture(), options_.out));
            break;
        case AfterRun::kRestart:
            leave_ = Leave::kRestart;
            break;
        case AfterRun::kNext:
            leave_ = Leave::kNext;
            break;
        case AfterRun::kClose:
            leave_ = Leave::kClosed;
            break;
    }
}

// Gives the window what the operator has chosen.
void Workbench::ApplyView() {
    window_.SetFullScreen(context_.full_screen);
    // On a kiosk the finger is a finger; only the card at the end needs a pointer.
    DesktopWindow::ShowPointer(!shell_.kiosk_ || PanelShows() || over_);
    if (theme_ != context_.view.theme) {
        theme_ = context_.view.theme;
        canvas_.SetTheme(theme_);
    }
}

Layout Workbench::CurrentLayout() const {
    const SDL_Point size = window_.size();
    return PlaceAll(static_cast<float>(size.x), static_cast<float>(size.y), context_.scale,
                    context_.view.dock_height, context_.view.scaling, context_.bar_height);
}

Area Workbench::ScreenPlace() const {
    if (PanelShows())
        return CurrentLayout().screen;
    const SDL_Point size = window_.size();
    return PlaceScreen({0, 0, static_cast<float>(size.x), static_cast<float>(size.y)},
                       context_.view.scaling);
}

SDL_Rect Workbench::ScreenPixels() const {
    const Area place = ScreenPlace();
    const auto pixels = [density = window_.density()](float units) {
        return static_cast<int>(std::lround(units * density));
    };
    return {pixels(place.x), pixels(place.y), pixels(place.width), pixels(place.height)};
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
        // The panel handles presses one by one, however fast they come: the meaning of a key
        // depends on the last click.
        const bool press = event.type == SDL_KEYDOWN || event.type == SDL_KEYUP ||
                           event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEBUTTONUP;
        if (press)
            UpdatePanel();
        // A card, a tip or an open list over the screen gets the press, not the finger.
        const bool panel_has_mouse = ImGui::GetIO().WantCaptureMouse;
        PassToPanel(event, press);
        switch (event.type) {
            case SDL_WINDOWEVENT:
                redraw_.Repaint();
                break;
            case SDL_RENDER_TARGETS_RESET:
                canvas_.Forget();
                redraw_.Repaint();
                break;
            case SDL_KEYDOWN:
                if (event.key.repeat == 0 && (event.key.keysym.mod & (KMOD_CTRL | KMOD_ALT)) == 0)
                    HandleKey(event.key.keysym.sym);
                break;
            case SDL_MOUSEBUTTONDOWN:
                if (!panel_has_mouse)
                    finger_.Take(event, ScreenPlace());
                break;
            case SDL_MOUSEBUTTONUP:
            case SDL_MOUSEMOTION:
                finger_.Take(event, ScreenPlace());
                break;
            default:
                break;
        }
    }
    ApplyView();
    return true;
}

void Workbench::PassToPanel(const SDL_Event& event, bool press) {
    panel_behind_ |= press || event.type == SDL_MOUSEMOTION;
    canvas_.Take(event);
    redraw_.LetPanelSettle();
}

void Workbench::HandleKey(SDL_Keycode key) {
    const ImGuiIO& io = ImGui::GetIO();
    const bool function_key = key >= SDLK_F1 && key <= SDLK_F12;
    // Enter and the space bar press the button that the keyboard has selected.
    const bool presses = key == SDLK_RETURN || key == SDLK_SPACE;
    if (!function_key && (io.WantTextInput || (presses && io.NavVisible)))
        return;
    PressKey(context_, key);
    ApplyView();
    redraw_.Repaint();
}

}  // namespace unit
