#pragma once

#include <string>

#include "control/command_table.h"
#include "dvrsim/card_folders.h"
#include "dvrsim/dvr.h"
#include "dvrsim/program/host_timers.h"
#include "dvrsim/program/line_end.h"

namespace dvrsim {

// What the commands of the program act on.
struct Context {
    Dvr& dvr;
    const HostTimers& timers;
    LineEnd& line;
    CardFolders& cards;
    // The plug between the DVR and the line.
    bool plugged = true;
    bool quit = false;
};

using ProgramTable = control::CommandTable<Context>;

// Everything that the program follows, on its standard input and its control socket.
const ProgramTable& ProgramCommands();

}  // namespace dvrsim
