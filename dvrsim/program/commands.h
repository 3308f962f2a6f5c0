#pragma once

#include <string>

#include "control/command_table.h"
#include "dvrsim/card_folders.h"
#include "dvrsim/dvr.h"
#include "dvrsim/program/host_timers.h"
#include "dvrsim/program/line_end.h"

namespace dvrsim {

// What the handler of a command is given.
struct Context {
    Dvr& dvr;
    const HostTimers& timers;
    LineEnd& line;
    CardFolders& cards;
    // False while the DVR is unplugged from the line.
    bool plugged = true;
    bool quit = false;
};

using ProgramTable = control::CommandTable<Context>;

// The commands of standard input and the control socket.
const ProgramTable& ProgramCommands();

}  // namespace dvrsim
