#pragma once

#include "unit/board/virtual_unit.h"
#include "unit/workbench/history.h"
#include "unit/workbench/layout.h"
#include "unit/workbench/panel_commands.h"
#include "unit/workbench/theme.h"

namespace unit {

// What all parts of the panel use. Host thread.
struct PanelContext {
    VirtualUnit& unit;
    CommandRunner& commands;
    History& history;
    Fonts fonts{};
    float scale = 1;
    Scaling scaling = Scaling::kWhole;
    // In the window's units; the operator drags it.
    float dock_height = kInitialDockHeight;
    // Pictures per second while something moves; 0 when not known.
    double picture_rate = 0;
    bool full_screen = false;
    // Opens every group, also those that the operator has folded.
    bool unfold_all = false;
    // The command line takes the keyboard in the next frame.
    bool focus_command_line = false;
};

}  // namespace unit
