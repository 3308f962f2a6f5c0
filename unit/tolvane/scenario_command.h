#pragma once

#include "unit/board/virtual_unit.h"
#include "unit/scenario/stage.h"
#include "unit/tolvane/command_line.h"
#include "unit/tolvane/signals.h"

namespace unit {

// What the command line says about how scenarios run.
RunOptions RunOptionsFor(const CommandLine& command_line, const VirtualUnit::Options& unit_options);

// `tolvane --scenario`: reads all files before anything runs, then runs each on a unit of its own
// and prints a line for it. The exit status: 0 when all passed, 1, or 2 for a file that is not in
// order.
int RunScenarios(const CommandLine& command_line, const Program& program,
                 const CloseSignals& signals);

// `tolvane --auto`: the built-in scenario of the whole update, with the debug output and pictures.
int RunAutomatically(const CommandLine& command_line, const Program& program,
                     const CloseSignals& signals);

}  // namespace unit
