#pragma once

#include <string_view>

#include "unit/board/virtual_unit.h"
#include "unit/scenario/context.h"
#include "unit/tolvane/command_line.h"
#include "unit/tolvane/run_unit.h"

namespace unit {

// The modes without an operator. Each prints how it went and returns the exit status.

// --scenario: reads all files before it runs the first, then runs each on a unit of its own.
int RunScenarios(const CommandLine& command_line, const Program& program,
                 const CloseSignals& signals);

// --auto: runs update.scenario, and prints the debug output and saves pictures.
int RunAutomatically(const CommandLine& command_line, const Program& program,
                     const CloseSignals& signals);

// --replay: saves the screen where the replay differs.
int RunReplay(const CommandLine& command_line, const Program& program);

// The options that the command line sets for scenarios.
RunOptions RunOptionsFor(const CommandLine& command_line, const VirtualUnit::Options& unit_options);

// The text of update.scenario.
std::string_view UpdateScenario();

}  // namespace unit
