#include "unit/tolvane/run_unit.h"

#include <pthread.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace unit {
namespace {

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

}  // namespace

void PrintNotice(const std::string& line) {
    std::fprintf(stderr, "tolvane: %s\n", line.c_str());
}

void PrintLine(std::chrono::microseconds time, const std::string& line) {
    std::printf("%10.3f  %s\n", static_cast<double>(time.count()) / 1e6, line.c_str());
    std::fflush(stdout);
}

void SetSeed(VirtualUnit::Options& options, std::uint32_t seed) {
    options.kernel.seed = seed;
    options.dvr.dvr.seed = seed;
}

VirtualUnit::Options UnitOptions(const CommandLine& command_line) {
    VirtualUnit::Options options;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = command_line.speed.value_or(1.0);
    SetSeed(options, command_line.seed.value_or(1));
    options.dvr.line = command_line.line;
    options.dvr.tty = command_line.tty;
    options.dvr.reset_command = command_line.reset_command;
    return options;
}

bool OpenLog(DebugLog& log, const CommandLine& command_line) {
    std::string problem;
    if (command_line.log.empty() || log.OpenFile(command_line.log, problem))
        return true;
    PrintNotice(problem);
    return false;
}

bool StartRecording(Recorder& recorder, const CommandLine& command_line) {
    std::string problem;
    if (command_line.record.empty() || recorder.Start(command_line.record, problem))
        return true;
    PrintNotice(problem);
    return false;
}

bool CloseUnit(VirtualUnit& unit) {
    if (!unit.Close(kCloseLimit)) {
        PrintNotice("the program did not end within " + std::to_string(kCloseLimit.count()) +
                    " s after its window was closed: " + unit.leftovers());
        // Its threads still use the platform, which must stay as it is.
        std::_Exit(kExitFailed);
    }
    if (!unit.leftovers().empty())
        PrintNotice("left open at the end: " + unit.leftovers());
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
