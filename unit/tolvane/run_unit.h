#pragma once

#include <chrono>
#include <string>

#include "unit/board/virtual_unit.h"
#include "unit/recording/recorder.h"
#include "unit/tolvane/command_line.h"

namespace unit {

// What the command's ways of running a unit have in common.

// Prints a line on the standard error. Any thread.
void Say(const std::string& line);
// Prints a line with the unit's time on the standard output. Any thread.
void PrintLine(std::chrono::microseconds time, const std::string& line);

// Free running, and what else the command line says.
VirtualUnit::Options UnitOptions(const CommandLine& command_line);
void SetSeed(VirtualUnit::Options& options, std::uint32_t seed);

// Opens the file that the command line gives for the debug output, if any. False, and said, when it
// cannot be written.
bool OpenLog(DebugLog& log, const CommandLine& command_line);
// Begins a recording when the command line asks for one. False, and said, when it cannot be.
bool StartRecording(Recorder& recorder, const CommandLine& command_line);

// Closes the program and says what is wrong with how it ended. Ends the process when the program
// does not.
bool CloseInOrder(VirtualUnit& unit);

}  // namespace unit
