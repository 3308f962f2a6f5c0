#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "unit/commands/unit_commands.h"
#include "unit/workbench/desktop_window.h"
#include "unit/workbench/operator_hint.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/panel_canvas.h"
#include "unit/workbench/panel_context.h"
#include "unit/workbench/redraw.h"
#include "unit/workbench/run_card.h"
#include "unit/workbench/screen_view.h"

namespace unit {

// The window, the panel's picture and the operator's settings: what stays when another unit takes
// the place of the last one. Host thread.
class WorkbenchWindow {
  public:
    // `name` is that of the unit. With `kiosk` the unit's screen covers the display at first, and
    // the settings are neither read nor saved.
    WorkbenchWindow(const std::string& name, bool kiosk);
    // Saves the settings.
    ~WorkbenchWindow();
    WorkbenchWindow(const WorkbenchWindow&) = delete;
    WorkbenchWindow& operator=(const WorkbenchWindow&) = delete;

  private:
    friend class Workbench;

    const bool kiosk_;
    ViewSettings view_;
    DesktopWindow desktop_;
    PanelCanvas canvas_;
};

// Shows a unit in the window: its screen, where the mouse acts as the finger, and the panel. The
// thread that calls Run is the host thread.
class Workbench {
  public:
    struct Options {
        // Where runs are saved.
        std::string out = "out";
        // A line about the run for the card at its end; empty: none.
        std::string note{};
        // Another run follows.
        bool more = false;
    };
    enum class Leave { kClosed, kRestart, kNext };
    // Empty until the run is over.
    using ReadVerdict = std::function<std::optional<Verdict>()>;

    Workbench(WorkbenchWindow& window, VirtualUnit& unit, Operator& op, Options options);
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    // Returns when the operator leaves the unit, or `asked_to_close` returns true. A run that is
    // over stays in the window with its verdict. Without `verdict` it is over when the program has
    // ended.
    Leave Run(const std::function<bool()>& asked_to_close, ReadVerdict verdict = {});

    // Puts the window in front of all others.
    void BringForward() { window_.BringForward(); }

    const PictureMeter& meter() const { return meter_; }

  private:
    std::optional<Verdict> ProgramVerdict() const;
    void CheckVerdict();
    bool HandleEvents();
    void HandleKey(SDL_Keycode key);
    void PassToPanel(const SDL_Event& event, bool press);
    void DrawPicture(bool panel, bool all);
    void Compose(const SDL_Rect& screen);
    // The unit's screen with its frame.
    SDL_Rect Bezel(const SDL_Rect& screen) const;
    void DrawPanel(const Fonts& fonts);
    // Lets the panel react to what it took since it was drawn.
    void UpdatePanel();
    void Apply(AfterRun wish);
    void ApplyView();
    bool PanelShows() const { return !context_.full_screen; }
    Layout CurrentLayout() const;
    Area ScreenPlace() const;
    SDL_Rect ScreenPixels() const;

    VirtualUnit& unit_;
    const Options options_;
    WorkbenchWindow& shell_;
    DesktopWindow& window_;
    PanelCanvas& canvas_;
    History history_;
    CommandRunner commands_;
    PanelContext context_;
    MouseFinger finger_;
    ScreenView screen_;
    Panel panel_;
    RunCard card_;
    RedrawSchedule redraw_;
    PictureMeter meter_;
    ReadVerdict read_verdict_;
    // The last result that the program showed.
    std::optional<Result> result_;
    bool over_ = false;
    std::optional<Leave> leave_;
    Theme theme_;
    SDL_Rect drawn_screen_{};
    // The panel took an event and was not drawn since.
    bool panel_behind_ = false;
};

}  // namespace unit
