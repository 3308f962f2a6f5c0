#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "unit/board/virtual_unit.h"
#include "unit/recording/recorder.h"
#include "unit/tolvane/command_line.h"

namespace unit {

// What all modes of the command share.

// Prints a line on standard error. Any thread.
void PrintNotice(const std::string& line);
// Prints a line with the unit's time on standard output. Any thread.
void PrintLine(std::chrono::microseconds time, const std::string& line);

// A free-running unit with the command line's options.
VirtualUnit::Options UnitOptions(const CommandLine& command_line);
void SetSeed(VirtualUnit::Options& options, std::uint32_t seed);

// Opens the file of --log; true without one. Prints the error when it returns false.
bool OpenLog(DebugLog& log, const CommandLine& command_line);
// Starts the recording of --record; true without one. Prints the error when it returns false.
bool StartRecording(Recorder& recorder, const CommandLine& command_line);

// Closes the program; true when it left nothing open, else prints what. When the program does not
// end, it ends the process.
bool CloseUnit(VirtualUnit& unit);

// Catches Ctrl-C, SIGTERM and SIGHUP, which ask the command to close. Make it before any other
// thread starts: threads inherit the blocked signals.
class CloseSignals {
  public:
    CloseSignals();
    ~CloseSignals();
    CloseSignals(const CloseSignals&) = delete;
    CloseSignals& operator=(const CloseSignals&) = delete;

    bool raised() const { return raised_; }

  private:
    std::atomic<bool> raised_{false};
    std::atomic<bool> ending_{false};
    std::thread listener_;
};

}  // namespace unit
