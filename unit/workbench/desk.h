#pragma once

#include <string>

#include "unit/board/virtual_unit.h"
#include "unit/workbench/command_runner.h"
#include "unit/workbench/history.h"
#include "unit/workbench/layout.h"
#include "unit/workbench/picture_meter.h"
#include "unit/workbench/theme.h"

namespace unit {

// What the parts of the panel share. Hardware's thread.
struct Desk {
    VirtualUnit& unit;
    CommandRunner& commands;
    History& history;
    const PictureMeter& meter;
    Fonts fonts{};
    float scale = 1;
    Scaling scaling = Scaling::kWhole;
    // The dock's height, in the window's units; the user drags it.
    float dock_height = kUsualDock;
    bool full_screen = false;
    // Every group is open, whatever the user has folded.
    bool unfolded = false;
    // The command line is to take the keyboard.
    bool focus_command_line = false;
};

}  // namespace unit
