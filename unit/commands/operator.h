#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "control/command_table.h"
#include "dvrsim/card_folders.h"
#include "unit/board/virtual_unit.h"

namespace unit {

// The person at the unit: reads the screen, has one finger and a set of SD cards. Commands from
// scenarios, the control socket and the panel are executed through it. Host thread; must outlive a
// tap that it began, and be destroyed before the unit.
class Operator {
  public:
    // `image_card` is the folder that "card in" inserts; if empty, a card with an update image is
    // made.
    Operator(VirtualUnit& unit, std::string image_card);

    VirtualUnit& unit() { return unit_; }
    const std::string& image_card() { return cards_.ImageCard(); }
    // A card whose update image has that version, or without an image; made once.
    const std::string& MakeCard(const std::optional<std::string>& image_version) {
        return cards_.Make(image_version);
    }
    const std::string& card_problem() const { return cards_.problem(); }

    // How the person wants the unit to end; nothing while it may run on. Refused, with false, where
    // the end of the run is not the person's: a scenario that `tolvane --scenario` runs.
    enum class Ending { kNone, kQuit, kRestart };
    bool AskFor(Ending ending);
    Ending ending() const { return ending_; }
    void AllowEnding() { may_end_ = true; }
    bool may_end() const { return may_end_; }

    // The position of a button on the screen, by its caption ("Next"), or of the close button
    // ("close").
    std::optional<POINT> FindButton(const std::string& caption);
    // The names that FindButton finds now.
    std::vector<std::string> ButtonsOnScreen();
    // The texts on the screen, each once, for a report.
    std::string TextsOnScreen();

    void Press(POINT position);
    void MoveFinger(POINT position);
    void Release();
    // Presses, and releases after that time.
    void Tap(POINT position, std::chrono::microseconds time);
    // True during a tap; it ends by itself.
    bool busy() const { return tapping_; }
    bool finger_down() const { return finger_.has_value(); }

  private:
    VirtualUnit& unit_;
    dvrsim::CardFolders cards_;
    std::optional<POINT> finger_;
    bool tapping_ = false;
    bool may_end_ = false;
    Ending ending_ = Ending::kNone;
};

using UnitTable = control::CommandTable<Operator>;
using UnitRows = std::vector<UnitTable::Row>;

// The command that lets the clock run to the next event.
inline constexpr char kStepPattern[] = "clock step";

// The command for a power request, and the request that such a line names.
inline constexpr char kRequestPattern[] = "request suspend|resume|off";
const PowerRequest& PowerRequestIn(const control::Values& values);

}  // namespace unit
