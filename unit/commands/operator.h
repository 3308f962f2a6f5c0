#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "control/command_table.h"
#include "dvrsim/card_folders.h"
#include "unit/board/virtual_unit.h"

namespace unit {

// The engineer at the unit: eyes, one finger, and the cards that lie ready. Commands are followed
// through it, whether they come from a scenario, the control socket or the panel. Hardware's
// thread; must outlive a tap that it began, and be gone before the unit is.
class Operator {
  public:
    // `image_card` is the folder that "card in" puts into the slot; one with an update image is
    // made when it is empty.
    Operator(VirtualUnit& unit, std::string image_card);

    VirtualUnit& unit() { return unit_; }
    const std::string& image_card() { return cards_.ImageCard(); }
    // A card whose update image has that version, or that holds none; made once.
    const std::string& MakeCard(const std::optional<std::string>& image_version) {
        return cards_.Make(image_version);
    }

    // Where a button is on the screen now, by its caption ("Next"), or the close button ("close").
    std::optional<POINT> FindButton(const std::string& caption);
    // The captions and other texts that stand on the screen, for a refusal that tells them.
    std::string WhatStands();

    void Press(POINT place);
    void MoveFinger(POINT place);
    void Release();
    // Presses and, after that time, releases.
    void Tap(POINT place, std::chrono::microseconds time);
    // Whether the finger is in the middle of a tap; it finishes by itself.
    bool busy() const { return tapping_; }
    bool finger_down() const { return finger_.has_value(); }

  private:
    VirtualUnit& unit_;
    dvrsim::CardFolders cards_;
    std::optional<POINT> finger_;
    bool tapping_ = false;
};

using UnitTable = control::CommandTable<Operator>;
using UnitRows = std::vector<UnitTable::Row>;

}  // namespace unit
