#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "dvrsim/temporary_card.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/scheduler.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "unit/board/virtual_unit.h"
#include "unit/recording/recorder.h"
#include "unit/tolvane/auto_user.h"
#include "unit/tolvane/command_line.h"
#include "unit/tolvane/run_replay.h"
#include "unit/tolvane/signals.h"
#include "unit/workbench/window_host.h"

namespace {

namespace kernel = platform::kernel;
using namespace unit;

constexpr auto kCloseLimit = std::chrono::seconds(60);
constexpr int kFailed = 1;

int RunProgram() {
    wchar_t command_line[] = L"";
    return WinMain(platform::resource::ModuleInstance(), nullptr, command_line, SW_SHOWNORMAL);
}

void Say(const std::string& line) {
    std::fprintf(stderr, "tolvane: %s\n", line.c_str());
}

void PrintDebugLine(std::chrono::microseconds time, const std::string& line) {
    std::printf("%10.3f  %s\n", static_cast<double>(time.count()) / 1e6, line.c_str());
    std::fflush(stdout);
}

bool IsSimulated(const CommandLine& command_line) {
    return command_line.automatic && command_line.line == DvrBay::Line::kMemory &&
           !command_line.speed;
}

VirtualUnit::Options UnitOptions(const CommandLine& command_line) {
    VirtualUnit::Options options;
    options.kernel.mode =
        IsSimulated(command_line) ? kernel::Mode::kSimulated : kernel::Mode::kFreeRunning;
    options.kernel.speed = command_line.speed.value_or(1.0);
    options.kernel.seed = command_line.seed;
    options.dvr.line = command_line.line;
    options.dvr.tty = command_line.tty;
    options.dvr.reset_command = command_line.reset_command;
    options.dvr.dvr.seed = command_line.seed;
    return options;
}

bool MakeFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        Say(folder + ": " + error.message());
    return !error;
}

// Closes the program and says what is wrong with how it ended.
bool CloseInOrder(VirtualUnit& unit) {
    if (!unit.Close(kCloseLimit)) {
        Say("the program did not end within " + std::to_string(kCloseLimit.count()) +
            " s of its window's close: " + unit.leftovers());
        // Its threads still use the platform: nothing may be torn down under them.
        std::_Exit(kFailed);
    }
    if (!unit.leftovers().empty())
        Say("left open at the end: " + unit.leftovers());
    return unit.leftovers().empty();
}

int RunAutomatically(VirtualUnit& unit, const CommandLine& command_line, const std::string& card,
                     const CloseSignals& signals) {
    const std::string screens = command_line.screens.empty() ? "out/screens" : command_line.screens;
    if (!MakeFolder(screens))
        return kFailed;
    AutoUser user(unit, {card, screens});
    unit.Start();
    user.Start();
    kernel::RunHardware([&] { return user.finished() || signals.raised(); });
    const bool in_order = CloseInOrder(unit);
    if (!user.finished())
        Say("interrupted");
    else if (!user.succeeded())
        Say("stopped at " + user.verdict());
    return user.succeeded() && in_order ? EXIT_SUCCESS : kFailed;
}

int RunWithoutWindow(VirtualUnit& unit, const CloseSignals& signals) {
    unit.Start();
    kernel::RunHardware([&] { return signals.raised() || !unit.program().running(); });
    return CloseInOrder(unit) ? unit.program().exit_code() : kFailed;
}

int RunInWindow(VirtualUnit& unit, const std::string& card, const CloseSignals& signals) {
    {
        WindowHost window(unit, card);
        unit.Start();
        window.Run([&] { return signals.raised(); });
    }
    return CloseInOrder(unit) ? unit.program().exit_code() : kFailed;
}

int Run(CommandLine command_line) {
    const CloseSignals signals;
    if (!command_line.automatic && !command_line.headless && command_line.replay.empty()) {
        std::string problem;
        if (!WindowHost::DisplayAvailable(problem)) {
            Say("no display (" + problem + "); running --auto");
            command_line.automatic = true;
        }
    }
    DebugLog log(PrintDebugLine);
    std::string problem;
    if (!command_line.log.empty() && !log.OpenFile(command_line.log, problem)) {
        Say(problem);
        return kFailed;
    }
    if (!platform::gdi::CheckFonts(problem)) {
        Say(problem);
        return kFailed;
    }
    if (!command_line.replay.empty()) {
        const int replay_status =
            RunReplay(command_line, {RunProgram, res::ProgramResources()}, log, Say);
        platform::gdi::Shutdown();
        return replay_status;
    }
    std::optional<dvrsim::TemporaryCard> made_card;
    if (command_line.card.empty())
        made_card.emplace();
    const std::string card = made_card ? made_card->path() : command_line.card;

    int status = kFailed;
    {
        const VirtualUnit::Options options = UnitOptions(command_line);
        VirtualUnit unit(options, {RunProgram, res::ProgramResources()}, log, Say);
        Recorder recorder(unit, options);
        if (!command_line.record.empty() && !recorder.Start(command_line.record, problem)) {
            Say(problem);
            return kFailed;
        }
        if (command_line.automatic)
            status = RunAutomatically(unit, command_line, card, signals);
        else if (command_line.headless)
            status = RunWithoutWindow(unit, signals);
        else
            status = RunInWindow(unit, card, signals);
    }
    platform::gdi::Shutdown();
    return status;
}

}  // namespace

int main(int count, char** arguments) {
    int exit_status = 0;
    const std::optional<CommandLine> command_line = ReadCommandLine(count, arguments, exit_status);
    return command_line ? Run(*command_line) : exit_status;
}
