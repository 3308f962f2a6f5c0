#pragma once

#include "unit/board/virtual_unit.h"

namespace unit {

// The command `tolvane` for this program; returns its exit status.
int RunCommand(int count, char** arguments, const Program& program);

}  // namespace unit
