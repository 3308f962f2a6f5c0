#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "dvrsim/card_folders.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/scheduler.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "unit/board/virtual_unit.h"
#include "unit/commands/operator.h"
#include "unit/recording/recorder.h"
#include "unit/scenario/reference.h"
#include "unit/tolvane/command_line.h"
#include "unit/tolvane/process_links.h"
#include "unit/tolvane/run_unit.h"
#include "unit/tolvane/unattended_runs.h"
#include "unit/workbench/desktop_window.h"
#include "unit/workbench/workbench.h"

namespace {

namespace kernel = platform::kernel;
using namespace unit;

int RunProgram() {
    wchar_t command_line[] = L"";
    return WinMain(platform::resource::ModuleInstance(), nullptr, command_line, SW_SHOWNORMAL);
}

int RunWithoutWindow(VirtualUnit& unit, const CloseSignals& signals) {
    unit.Start();
    kernel::RunHostThread([&] { return signals.raised() || !unit.program().running(); });
    return CloseUnit(unit) ? unit.program().exit_code() : kExitFailed;
}

int RunInWindow(VirtualUnit& unit, Operator& op, ProcessLinks& links,
                const CommandLine& command_line, const CloseSignals& signals) {
    // A second copy that finds the first one ends without a window; the host must not show one
    // either.
    const bool waits = links.second();
    if (waits) {
        unit.Start();
        kernel::RunHostThread([&] {
            return signals.raised() || !unit.program().running() || ProgramHost::HasWindow();
        });
    }
    if (!waits || (unit.program().running() && !signals.raised())) {
        Workbench workbench(unit, op, {command_line.kiosk, command_line.speed.value_or(1.0)});
        links.OnRaise([&workbench] { workbench.BringForward(); });
        if (!waits)
            unit.Start();
        workbench.Run([&] { return signals.raised(); });
        links.OnRaise({});
        if (command_line.stats)
            PrintNotice(workbench.meter().Summary());
    }
    return CloseUnit(unit) ? unit.program().exit_code() : kExitFailed;
}

int RunWithOperator(const CommandLine& command_line, const Program& program,
                    const CloseSignals& signals) {
    DebugLog log(PrintLine);
    if (!OpenLog(log, command_line))
        return kExitFailed;
    const VirtualUnit::Options options = UnitOptions(command_line);
    VirtualUnit unit(options, program, log, PrintNotice);
    Recorder recorder(unit, options);
    if (!StartRecording(recorder, command_line))
        return kExitFailed;
    Operator op(unit, command_line.card);
    ProcessLinks links(op, command_line.unit, RunOptionsFor(command_line, options));
    return command_line.headless ? RunWithoutWindow(unit, signals)
                                 : RunInWindow(unit, op, links, command_line, signals);
}

int Run(CommandLine command_line) {
    const CloseSignals signals;
    const bool wants_window =
        command_line.window || (!command_line.automatic && !command_line.headless &&
                                command_line.scenarios.empty() && command_line.replay.empty());
    if (wants_window) {
        std::string problem;
        if (!DesktopWindow::DisplayAvailable(problem)) {
            if (command_line.window) {
                PrintNotice("no display (" + problem + ")");
                return kExitFailed;
            }
            PrintNotice("no display (" + problem + "); running --auto");
            command_line.automatic = true;
        }
    }
    std::string problem;
    if (!platform::gdi::CheckFonts(problem)) {
        PrintNotice(problem);
        return kExitFailed;
    }
    std::optional<dvrsim::TemporaryCard> made_card;
    if (command_line.card.empty())
        command_line.card = made_card.emplace().path();
    const Program program{RunProgram, res::ProgramResources()};
    int status = kExitFailed;
    if (!command_line.replay.empty())
        status = RunReplay(command_line, program);
    else if (!command_line.scenarios.empty())
        status = RunScenarios(command_line, program, signals);
    else if (command_line.automatic)
        status = RunAutomatically(command_line, program, signals);
    else
        status = RunWithOperator(command_line, program, signals);
    platform::gdi::Shutdown();
    return status;
}

}  // namespace

int main(int count, char** arguments) {
    int exit_status = 0;
    const std::optional<CommandLine> command_line = ReadCommandLine(count, arguments, exit_status);
    if (!command_line)
        return exit_status;
    if (command_line->help_scenarios) {
        std::fputs(ScenarioReference(UpdateScenario()).c_str(), stdout);
        return EXIT_SUCCESS;
    }
    return Run(*command_line);
}
