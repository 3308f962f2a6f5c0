#include "unit/tolvane/run_unit.h"

#include <pthread.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "control/progress_line.h"
#include "control/terminal.h"
#include "platform/kernel/clock.h"

namespace unit {

using control::Coloured;
using control::Tone;

namespace {

constexpr std::string_view kProgram = "tolvane";
constexpr auto kCloseLimit = std::chrono::seconds(60);
// Only the destructor sends it, to end the listener.
constexpr int kEndSignal = SIGUSR1;

sigset_t CloseSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, kEndSignal})
        sigaddset(&set, signal);
    return set;
}

// The error of the first line that could not be written.
std::atomic<int> g_output_error{0};

// The process's own; ProgramOutput replaces stdout.
std::FILE* const g_command_output = stdout;

control::ProgressLine g_progress(stderr);

}  // namespace

void PrintError(const std::string& problem) {
    g_progress.Print(control::ErrorText(kProgram, problem, stderr), stderr);
}

void PrintNotice(const std::string& line) {
    g_progress.Print(
        Coloured(Tone::kNotice, std::string(kProgram) + ":", stderr) + " " + line + "\n", stderr);
}

void PrintResult(const std::string& line) {
    if (!g_progress.Print(line + "\n", g_command_output) && g_output_error == 0)
        g_output_error = errno;
}

std::string VerdictText(bool passed) {
    return VerdictText(passed, passed ? "passed" : "failed");
}

std::string VerdictText(bool passed, const std::string& text) {
    return Coloured(passed ? Tone::kPassed : Tone::kFailed, text, g_command_output);
}

void ShowProgress(const std::function<std::string()>& text) {
    if (g_progress.Due())
        g_progress.Show(text());
}

void ClearProgress() {
    g_progress.Clear();
}

std::string TimedLine(std::chrono::microseconds time, const std::string& line) {
    char text[32];
    std::snprintf(text, sizeof text, "%10.3f  ", static_cast<double>(time.count()) / 1e6);
    return text + line;
}

void PrintLine(std::chrono::microseconds time, const std::string& line) {
    PrintResult(TimedLine(time, line));
}

void PrintCommand(std::chrono::microseconds time, const std::string& command) {
    PrintLine(time, Coloured(Tone::kCommand, "> " + command, g_command_output));
}

bool CheckOutput() {
    if (g_output_error == 0)
        return true;
    PrintError(std::string("standard output: ") + std::strerror(g_output_error));
    return false;
}

DebugLog::Listener OutputListener(bool prints) {
    if (prints)
        return PrintLine;
    return [](std::chrono::microseconds, const std::string&) {};
}

std::function<void(const std::string&)> LineTaker(bool prints) {
    return [prints](const std::string& line) {
        if (prints)
            PrintLine(platform::kernel::Now(), line);
    };
}

std::string TimesText(std::chrono::microseconds unit_time,
                      std::chrono::duration<double> real_time) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f s of unit time in %.1f s",
                  static_cast<double>(unit_time.count()) / 1e6, real_time.count());
    return text;
}

void SetSeed(VirtualUnit::Options& options, std::uint32_t seed) {
    options.kernel.seed = seed;
    options.dvr.dvr.seed = seed;
}

VirtualUnit::Options UnitOptions(const CommandLine& command_line) {
    VirtualUnit::Options options;
    options.name = command_line.unit;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = command_line.speed.value_or(1.0);
    SetSeed(options, command_line.seed.value_or(1));
    options.dvr.line = command_line.line;
    options.dvr.tty = command_line.tty;
    options.dvr.reset_command = command_line.reset_command;
    return options;
}

CommandLine NumberedOutputs(CommandLine command_line, int run) {
    if (run == 1)
        return command_line;
    const std::string number = "." + std::to_string(run);
    for (std::string* const file : {&command_line.log, &command_line.record})
        if (!file->empty())
            *file += number;
    // The ending of a trace or a video is its format.
    for (std::string* const file : {&command_line.trace, &command_line.video})
        if (!file->empty())
            file->insert(file->size() - std::filesystem::path(*file).extension().string().size(),
                         number);
    return command_line;
}

bool OpenLog(DebugLog& log, const CommandLine& command_line) {
    std::string problem;
    if (command_line.log.empty() || log.OpenFile(command_line.log, problem))
        return true;
    PrintError(problem);
    return false;
}

bool StartRecording(VirtualUnit& unit, Recorder& recorder, VideoRecorder& video,
                    const CommandLine& command_line) {
    if (!OpenVideo(video, command_line))
        return false;
    video.Begin(unit);
    std::string problem;
    if ((command_line.record.empty() && command_line.trace.empty()) ||
        recorder.Start({command_line.record, command_line.trace}, problem))
        return true;
    PrintError(problem);
    return false;
}

bool OpenVideo(VideoRecorder& video, const CommandLine& command_line) {
    std::string problem;
    if (command_line.video.empty() ||
        video.Open(command_line.video, command_line.video_speed, problem))
        return true;
    PrintError(problem);
    return false;
}

bool FinishFiles(Recorder& recorder, VideoRecorder& video, const DebugLog& log) {
    const std::string problem = log.problem();
    if (!problem.empty())
        PrintError(problem);
    const bool recorded = recorder.Finish();
    return video.Finish() && recorded && problem.empty();
}

bool CloseUnit(VirtualUnit& unit) {
    if (!unit.Close(kCloseLimit)) {
        PrintError("the program did not end within " + std::to_string(kCloseLimit.count()) +
                   " s after its window was closed: " + unit.leftovers());
        // Its threads still use the platform, which must stay as it is.
        std::_Exit(kExitFailed);
    }
    if (!unit.leftovers().empty())
        PrintError("left open at the end: " + unit.leftovers());
    return unit.leftovers().empty();
}

CloseSignals::CloseSignals() {
    const sigset_t set = CloseSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    listener_ = std::thread([this, set] {
        int signal = 0;
        while (!ending_ && sigwait(&set, &signal) == 0) {
            if (signal != kEndSignal)
                raised_ = true;
        }
    });
}

CloseSignals::~CloseSignals() {
    ending_ = true;
    pthread_kill(listener_.native_handle(), kEndSignal);
    listener_.join();
}

}  // namespace unit
