#pragma once

#include <string>

#include "unit/board/virtual_unit.h"
#include "unit/workbench/history.h"
#include "unit/workbench/layout.h"
#include "unit/workbench/panel_commands.h"
#include "unit/workbench/theme.h"
#include "unit/workbench/view_settings.h"

namespace unit {

// What all parts of the panel use. Host thread.
struct PanelContext {
    VirtualUnit& unit;
    CommandRunner& commands;
    History& history;
    ViewSettings& view;
    Fonts fonts{};
    float scale = 1;
    // Pictures per second while something moves; 0 when not known.
    double picture_rate = 0;
    bool full_screen = false;
    // The English of all texts on the unit's screen lies over them.
    bool shows_glosses = false;
    // Opens every group, also those that the operator has folded.
    bool unfold_all = false;
    // The command line takes the keyboard in the next frame.
    bool focus_command_line = false;
    // The height that the command line and its reply want, in the window's units.
    float bar_height = 0;
    // What the last button of the dock did.
    std::string dock_note{};
    // How the run ended, instead of a hint; empty before.
    std::string ended{};
    // The operator asked for a new unit.
    bool restart = false;
};

}  // namespace unit
