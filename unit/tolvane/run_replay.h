#pragma once

#include "unit/board/virtual_unit.h"
#include "unit/tolvane/command_line.h"

namespace unit {

// tolvane --replay: says how it went, writes the picture of a difference, returns the exit status.
int RunReplay(const CommandLine& command_line, const Program& program);

}  // namespace unit
