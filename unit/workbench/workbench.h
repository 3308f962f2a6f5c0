#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "unit/commands/unit_commands.h"
#include "unit/workbench/desk.h"
#include "unit/workbench/desktop_window.h"
#include "unit/workbench/finger.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/panel_canvas.h"
#include "unit/workbench/screen_view.h"

namespace unit {

// The window: the unit's screen, and beside it the panel. The mouse or a touch is the finger. Runs
// the hardware on the calling thread and draws 60 pictures a second while something moves, none
// while nothing does.
class Workbench {
  public:
    struct Options {
        // The unit's screen alone, over the whole display.
        bool kiosk = false;
        // How many times as fast as the host's clock the unit runs.
        double speed = 1.0;
    };

    // False with one line in `problem` when there is no display.
    static bool DisplayAvailable(std::string& problem) {
        return DesktopWindow::DisplayAvailable(problem);
    }

    Workbench(VirtualUnit& unit, Operator& op, const Options& options);
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    // Until the program has ended, the window was closed, or `asked_to_close`.
    void Run(const std::function<bool()>& asked_to_close);

    // Puts the window before all others.
    void BringForward() { window_.BringForward(); }

    const PictureMeter& meter() const { return meter_; }

  private:
    bool HandleEvents();
    void HandleKey(SDL_Keycode key);
    void DrawWhenDue(double now);
    void DrawPicture(bool with_panel);
    void SettlePanel();
    void ShowToPanel(const SDL_Event& event);
    void DrawPanel(const Fonts& fonts);
    // Waits until there is an event or something to do.
    void Wait(double until_due) const;
    bool PanelShows() const { return !options_.kiosk && !desk_.full_screen; }
    Layout CurrentLayout() const;
    Area ScreenPlace() const;

    VirtualUnit& unit_;
    const Options options_;
    DesktopWindow window_;
    PictureMeter meter_;
    History history_;
    CommandRunner commands_;
    Desk desk_;
    Finger finger_;
    ScreenView screen_;
    Panel panel_;
    std::optional<PanelCanvas> canvas_;

    // How many more frames the panel wants to settle after the last event.
    int frames_to_settle_ = 0;
    bool repaint_ = true;
    double next_picture_ = 0;
    double next_news_ = 0;
    double next_refresh_ = 0;
    bool panel_outdated_ = true;
    // The panel has taken something of the mouse or a key and has not been drawn since.
    bool panel_behind_ = false;
};

}  // namespace unit
