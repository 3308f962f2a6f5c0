#include "unit/tolvane/unattended_runs.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "platform/kernel/scheduler.h"
#include "unit/recording/recording.h"
#include "unit/recording/replay.h"
#include "unit/scenario/scenario_run.h"
#include "unit/workbench/workbench.h"

// Defined in update_scenario.S.
extern "C" const char tolvane_update_scenario_begin[];
extern "C" const char tolvane_update_scenario_end[];

namespace unit {
namespace {

namespace kernel = platform::kernel;
using HostClock = std::chrono::steady_clock;

// The command line overrides the file's settings.
VirtualUnit::Options OptionsFor(const Scenario& scenario, const CommandLine& command_line) {
    VirtualUnit::Options options = UnitOptions(command_line);
    options.kernel.mode = kernel::Mode::kSimulated;
    scenario.settings.ApplyTo(options);
    if (command_line.seed)
        SetSeed(options, *command_line.seed);
    if (command_line.speed)
        options.kernel.speed = *command_line.speed;
    const bool real_time =
        command_line.speed || command_line.window || command_line.line != DvrPort::Line::kMemory;
    if (real_time)
        options.kernel.mode = kernel::Mode::kFreeRunning;
    if (options.kernel.mode == kernel::Mode::kSimulated)
        options.kernel.speed = 1;
    return options;
}

bool RunOn(VirtualUnit& unit, Operator& op, ScenarioRun& run, const CommandLine& command_line,
           const CloseSignals& signals) {
    const auto done = [&] { return run.finished() || signals.raised(); };
    if (command_line.window) {
        Workbench window(unit, op, {command_line.kiosk, command_line.speed.value_or(1.0)});
        unit.Start();
        run.Start();
        window.Run(done);
    } else {
        unit.Start();
        run.Start();
        kernel::RunHostThread(done);
    }
    run.Stop(signals.raised() ? "interrupted" : "the window was closed");
    return CloseUnit(unit) && run.passed();
}

// True when it passed. Prints the result.
bool RunOne(const Scenario& scenario, const CommandLine& command_line, const Program& program,
            const CloseSignals& signals) {
    DebugLog log(
        [verbose = command_line.verbose](std::chrono::microseconds time, const std::string& line) {
            if (verbose)
                PrintLine(time, line);
        });
    if (!OpenLog(log, command_line))
        return false;
    const VirtualUnit::Options options = OptionsFor(scenario, command_line);
    VirtualUnit unit(options, program, log, PrintNotice);
    Recorder recorder(unit, options);
    if (!StartRecording(recorder, command_line))
        return false;
    Operator op(unit, command_line.card);
    ScenarioRun run(op, scenario, RunOptionsFor(command_line, options));
    const auto began = HostClock::now();
    const bool passed = RunOn(unit, op, run, command_line, signals);
    const std::chrono::duration<double> host_time = HostClock::now() - began;
    if (!run.passed())
        PrintNotice(run.problem());
    if (!command_line.automatic) {
        std::printf("%s: %s, %.1f s of unit time, %.1f s\n", scenario.name.c_str(),
                    passed ? "passed" : "failed", static_cast<double>(run.duration().count()) / 1e6,
                    host_time.count());
        std::fflush(stdout);
    }
    return passed;
}

void SavePicture(const Picture& picture, const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string file = folder + "/replay.png";
    std::string problem;
    PrintNotice(WritePng(picture, file, problem) ? "the replay's screen is in " + file : problem);
}

}  // namespace

RunOptions RunOptionsFor(const CommandLine& command_line,
                         const VirtualUnit::Options& unit_options) {
    RunOptions options;
    options.pictures = command_line.screens;
    options.out = command_line.out;
    options.update_screens = command_line.update_screens;
    options.seed = static_cast<std::uint32_t>(unit_options.kernel.seed);
    options.say = PrintNotice;
    if (command_line.verbose)
        options.trace = [](const std::string& command) {
            PrintLine(kernel::Now(), "> " + command);
        };
    return options;
}

int RunScenarios(const CommandLine& command_line, const Program& program,
                 const CloseSignals& signals) {
    std::vector<Scenario> scenarios;
    std::vector<std::string> problems;
    for (const std::string& file : command_line.scenarios)
        if (auto scenario = LoadScenario(file, problems))
            scenarios.push_back(std::move(*scenario));
    for (const std::string& problem : problems)
        PrintNotice(problem);
    if (!problems.empty())
        return kExitWrongUsage;
    int status = EXIT_SUCCESS;
    for (const Scenario& scenario : scenarios) {
        if (signals.raised())
            return kExitFailed;
        if (!RunOne(scenario, command_line, program, signals))
            status = kExitFailed;
    }
    return status;
}

int RunAutomatically(const CommandLine& command_line, const Program& program,
                     const CloseSignals& signals) {
    CommandLine with_pictures = command_line;
    with_pictures.verbose = true;
    if (with_pictures.screens.empty())
        with_pictures.screens = "out/screens";
    std::vector<std::string> problems;
    const auto scenario = ReadScenario(std::string(UpdateScenario()), "update.scenario", problems);
    for (const std::string& problem : problems)
        PrintNotice(problem);
    return scenario && RunOne(*scenario, with_pictures, program, signals) ? EXIT_SUCCESS
                                                                          : kExitFailed;
}

int RunReplay(const CommandLine& command_line, const Program& program) {
    DebugLog log(PrintLine);
    if (!OpenLog(log, command_line))
        return kExitFailed;
    std::string problem;
    const auto recording = ReadRecording(command_line.replay, problem);
    if (!recording) {
        PrintNotice(problem);
        return kExitWrongUsage;
    }
    const ReplayResult result = Replay(*recording, program, log, PrintNotice);
    PrintNotice(ReplayReport(*recording, result));
    if (!result.difference)
        return EXIT_SUCCESS;
    if (result.screen)
        SavePicture(*result.screen,
                    command_line.screens.empty() ? "out/screens" : command_line.screens);
    return kExitFailed;
}

std::string_view UpdateScenario() {
    return {tolvane_update_scenario_begin, tolvane_update_scenario_end};
}

}  // namespace unit
