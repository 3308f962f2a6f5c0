#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "unit/board/virtual_unit.h"
#include "unit/recording/recorder.h"
#include "unit/tolvane/command_line.h"
#include "unit/video/video_recorder.h"

namespace unit {

// What all modes of the command share.

// Prints what is wrong on standard error, in one line, with further lines that explain it. Any
// thread.
void PrintError(const std::string& problem);
// Prints a line for the operator on standard error. Any thread.
void PrintNotice(const std::string& line);
// Prints a line on standard output, which stays the command's own while the program runs. Any
// thread.
void PrintResult(const std::string& line);
// "passed" or "failed", or another text for it, in its colour for PrintResult.
std::string VerdictText(bool passed);
std::string VerdictText(bool passed, const std::string& text);
// Draws the progress line on a terminal on standard error, if it is time for it: only then calls
// text(). What the functions above print clears it. Any thread.
void ShowProgress(const std::function<std::string()>& text);
void ClearProgress();
// "    20.005  TEXT"
std::string TimedLine(std::chrono::microseconds time, const std::string& line);
// Prints that line on standard output, for the program's output.
void PrintLine(std::chrono::microseconds time, const std::string& line);
// The same for a scenario's command, after "> ".
void PrintCommand(std::chrono::microseconds time, const std::string& command);
// False when a line could not be written to standard output; prints the problem.
bool CheckOutput();

// Prints the program's output, or nothing.
DebugLog::Listener OutputListener(bool prints);
// The same for what the program prints on its standard output; see ProgramOutput.
std::function<void(const std::string&)> LineTaker(bool prints);

// "41.2 s of unit time in 0.4 s"
std::string TimesText(std::chrono::microseconds unit_time, std::chrono::duration<double> real_time);

// A free-running unit with the command line's options.
VirtualUnit::Options UnitOptions(const CommandLine& command_line);
void SetSeed(VirtualUnit::Options& options, std::uint32_t seed);

// The command line for a unit that was restarted so many times less one: later runs get files of
// their own for --log and --record ("run.log" becomes "run.log.2"), and for --trace and --video
// ("run.2.json").
CommandLine NumberedOutputs(CommandLine command_line, int run);

// Opens the file of --log; true without one. Prints the error when it returns false.
bool OpenLog(DebugLog& log, const CommandLine& command_line);
// Starts the files of --record, --trace and --video; true without them. Prints the error when it
// returns false.
bool StartRecording(VirtualUnit& unit, Recorder& recorder, VideoRecorder& video,
                    const CommandLine& command_line);
// The first step for --video alone, before there is a unit.
bool OpenVideo(VideoRecorder& video, const CommandLine& command_line);
// False when one of these files is not complete; prints the problem.
bool FinishFiles(Recorder& recorder, VideoRecorder& video, const DebugLog& log);

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
