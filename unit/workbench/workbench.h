#pragma once

#include <functional>
#include <optional>

#include "unit/commands/unit_commands.h"
#include "unit/workbench/desktop_window.h"
#include "unit/workbench/panel.h"
#include "unit/workbench/panel_canvas.h"
#include "unit/workbench/panel_context.h"
#include "unit/workbench/redraw.h"
#include "unit/workbench/screen_view.h"

namespace unit {

// The window with the unit's screen, where the mouse acts as the finger, and the panel. The thread
// that calls Run is the host thread.
class Workbench {
  public:
    struct Options {
        // Only the unit's screen, over the whole display.
        bool kiosk = false;
        // How many times as fast as the host's clock the unit runs.
        double speed = 1.0;
    };

    Workbench(VirtualUnit& unit, Operator& op, const Options& options);
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    // Returns when the program has ended, the window was closed, or `asked_to_close` returns true.
    void Run(const std::function<bool()>& asked_to_close);

    // Puts the window in front of all others.
    void BringForward() { window_.BringForward(); }

    const PictureMeter& meter() const { return meter_; }

  private:
    bool HandleEvents();
    void HandleKey(SDL_Keycode key);
    void PassToPanel(const SDL_Event& event);
    void DrawPicture(bool with_panel);
    void DrawPanel(const Fonts& fonts);
    // Lets the panel react to what it took since it was drawn.
    void UpdatePanel();
    bool PanelShows() const { return !options_.kiosk && !context_.full_screen; }
    Layout CurrentLayout() const;
    Area ScreenPlace() const;

    VirtualUnit& unit_;
    const Options options_;
    DesktopWindow window_;
    History history_;
    CommandRunner commands_;
    PanelContext context_;
    MouseFinger finger_;
    ScreenView screen_;
    Panel panel_;
    std::optional<PanelCanvas> canvas_;
    RedrawSchedule redraw_;
    PictureMeter meter_;
    // The panel took an event and was not drawn since.
    bool panel_behind_ = false;
};

}  // namespace unit
