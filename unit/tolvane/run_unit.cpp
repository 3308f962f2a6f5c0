#include "unit/tolvane/run_unit.h"

#include <cstdio>
#include <cstdlib>

#include "unit/tolvane/exit_status.h"

namespace unit {
namespace {

constexpr auto kCloseLimit = std::chrono::seconds(60);

}  // namespace

void Say(const std::string& line) {
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
    Say(problem);
    return false;
}

bool StartRecording(Recorder& recorder, const CommandLine& command_line) {
    std::string problem;
    if (command_line.record.empty() || recorder.Start(command_line.record, problem))
        return true;
    Say(problem);
    return false;
}

bool CloseInOrder(VirtualUnit& unit) {
    if (!unit.Close(kCloseLimit)) {
        Say("the program did not end within " + std::to_string(kCloseLimit.count()) +
            " s of its window's close: " + unit.leftovers());
        // Its threads still use the platform: nothing may be torn down under them.
        std::_Exit(kExitFailed);
    }
    if (!unit.leftovers().empty())
        Say("left open at the end: " + unit.leftovers());
    return unit.leftovers().empty();
}

}  // namespace unit
