#pragma once

#include "unit/tolvane/command_line.h"

namespace unit {

// `tolvane convert`: writes a recording as a trace. Prints what is wrong; returns the command's
// exit status.
int Convert(const CommandLine& command_line);

}  // namespace unit
