#include "unit/tolvane/run_command.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "dvrsim/card_folders.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/scheduler.h"
#include "serial/tty.h"
#include "unit/board/virtual_unit.h"
#include "unit/commands/operator.h"
#include "unit/recording/recorder.h"
#include "unit/scenario/reference.h"
#include "unit/tolvane/command_line.h"
#include "unit/tolvane/convert.h"
#include "unit/tolvane/process_links.h"
#include "unit/tolvane/program_output.h"
#include "unit/tolvane/run_unit.h"
#include "unit/tolvane/unattended_runs.h"
#include "unit/video/video_recorder.h"
#include "unit/workbench/desktop_window.h"
#include "unit/workbench/workbench.h"

namespace unit {
namespace {

namespace kernel = platform::kernel;

int RunWithoutWindow(VirtualUnit& unit, const Operator& op, const CloseSignals& signals) {
    unit.Start();
    kernel::RunHostThread([&] {
        return signals.raised() || op.ending() != Operator::Ending::kNone ||
               !unit.program().running();
    });
    return CloseUnit(unit) ? unit.program().exit_code() : kExitFailed;
}

// What the window shows at the end about the files of the run.
std::string RecordingNote(const CommandLine& command_line) {
    return command_line.record.empty() ? std::string()
                                       : "The recording is in " + command_line.record + ".";
}

// `leave` is set to what the operator wants next. The window is made by the first unit that needs
// it.
int RunInWindow(VirtualUnit& unit, Operator& op, ProcessLinks& links,
                const CommandLine& command_line, const CloseSignals& signals,
                std::optional<WorkbenchWindow>& window, Workbench::Leave& leave) {
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
        if (!window)
            window.emplace(command_line.unit, command_line.kiosk);
        Workbench workbench(*window, unit, op,
                            {.out = command_line.out, .note = RecordingNote(command_line)});
        links.OnRaise([&workbench] { workbench.BringForward(); });
        if (!waits)
            unit.Start();
        leave = workbench.Run(
            [&] { return signals.raised() || op.ending() != Operator::Ending::kNone; });
        links.OnRaise({});
        if (command_line.stats)
            PrintNotice(workbench.meter().Summary());
    }
    return CloseUnit(unit) ? unit.program().exit_code() : kExitFailed;
}

// One unit from its start to its end.
int RunUnit(const CommandLine& command_line, const Program& program, const CloseSignals& signals,
            std::optional<WorkbenchWindow>& window, Workbench::Leave& leave) {
    DebugLog log(OutputListener(!command_line.quiet));
    if (!OpenLog(log, command_line))
        return kExitFailed;
    const ProgramOutput program_output(LineTaker(!command_line.quiet));
    const VirtualUnit::Options options = UnitOptions(command_line);
    VirtualUnit unit(options, program, log, PrintNotice);
    Recorder recorder(unit, options);
    VideoRecorder video;
    if (!StartRecording(unit, recorder, video, command_line))
        return kExitFailed;
    Operator op(unit, command_line.card);
    op.AllowEnding();
    ProcessLinks links(op, command_line.unit, RunOptionsFor(command_line, options));
    const int status = command_line.headless
                           ? RunWithoutWindow(unit, op, signals)
                           : RunInWindow(unit, op, links, command_line, signals, window, leave);
    if (op.ending() == Operator::Ending::kRestart && !signals.raised())
        leave = Workbench::Leave::kRestart;
    return FinishFiles(recorder, video, log) ? status : kExitFailed;
}

int RunWithOperator(const CommandLine& command_line, const Program& program,
                    const CloseSignals& signals) {
    std::optional<WorkbenchWindow> window;
    for (int run = 1;; ++run) {
        Workbench::Leave leave = Workbench::Leave::kClosed;
        const int status =
            RunUnit(NumberedOutputs(command_line, run), program, signals, window, leave);
        if (leave != Workbench::Leave::kRestart)
            return status;
    }
}

// A device that is missing at the start is a mistake; one that goes away later, the wizard's
// business.
bool CheckLine(const CommandLine& command_line, std::string& problem) {
    serial::Tty tty;
    return command_line.line != DvrPort::Line::kTty || !command_line.replay.empty() ||
           tty.Open(command_line.tty, problem) == 0;
}

int Run(CommandLine command_line, const Program& program) {
    const CloseSignals signals;
    const bool wants_window =
        command_line.window || (!command_line.automatic && !command_line.headless &&
                                command_line.scenarios.empty() && command_line.replay.empty());
    std::string problem;
    if (wants_window) {
        using enum DesktopWindow::Display;
        const DesktopWindow::Display display = DesktopWindow::FindDisplay(problem);
        if (display == kBroken || (display == kNone && command_line.window)) {
            PrintError("no display: " + problem + "; --auto and --headless need none");
            return kExitFailed;
        }
        if (display == kNone) {
            PrintNotice("no display: " + problem + "; running --auto");
            command_line.automatic = true;
        }
    }
    if (!platform::gdi::CheckFonts(problem) || !CheckLine(command_line, problem)) {
        PrintError(problem);
        return kExitFailed;
    }
    std::optional<dvrsim::TemporaryCard> made_card;
    if (command_line.card.empty()) {
        command_line.card = made_card.emplace().path();
        if (command_line.card.empty()) {
            PrintError("the SD card's folder cannot be made: " + made_card->problem());
            return kExitFailed;
        }
    }
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

int RunCommand(int count, char** arguments, const Program& program) {
    int exit_status = 0;
    const std::optional<CommandLine> command_line = ReadCommandLine(count, arguments, exit_status);
    if (!command_line)
        return exit_status;
    if (command_line->help_scenarios) {
        std::fputs(ScenarioReference(UpdateScenario()).c_str(), stdout);
        return EXIT_SUCCESS;
    }
    const int status =
        command_line->convert.empty() ? Run(*command_line, program) : Convert(*command_line);
    return CheckOutput() ? status : kExitFailed;
}

}  // namespace unit
