#pragma once

#include <string>
#include <vector>

#include "unit/workbench/panel_context.h"

namespace unit {

// How a run ended.
struct Verdict {
    bool good = false;
    std::string headline;
    // One line each.
    std::vector<std::string> details;
};

// What the operator wants after a run.
enum class AfterRun { kNothing, kSave, kRestart, kNext, kClose };

// The card over the unit's screen after a run; the operator can move or hide it.
class RunCard {
  public:
    // Shows the verdict. With `more` there is another run to go on with.
    void Show(Verdict verdict, bool more);
    bool shown() const { return shown_; }
    const Verdict& verdict() const { return verdict_; }

    // Says where the run was saved, or why not.
    void SetSaved(std::string line) { saved_ = std::move(line); }

    // Within an ImGui frame. `screen` is the place of the unit's screen.
    AfterRun Draw(PanelContext& context, const Area& screen);

  private:
    Verdict verdict_;
    bool shown_ = false;
    bool more_ = false;
    std::string saved_;
};

// The card of five lines that a first user sees, until it is closed.
void DrawFirstRunCard(PanelContext& context, const Area& screen);

// Saves the screen, the debug output and the serial line in a new folder below `out`. Returns a
// line with the folder, or with the error.
std::string SaveRun(const History& history, const Picture& screen, const std::string& out);

}  // namespace unit
