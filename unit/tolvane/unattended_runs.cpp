#include "unit/tolvane/unattended_runs.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "platform/kernel/scheduler.h"
#include "unit/recording/recording.h"
#include "unit/recording/replay.h"
#include "unit/report/document.h"
#include "unit/report/run_collector.h"
#include "unit/scenario/scenario_run.h"
#include "unit/tolvane/junit.h"
#include "unit/tolvane/program_output.h"
#include "unit/tolvane/report_files.h"
#include "unit/tolvane/run_progress.h"
#include "unit/workbench/workbench.h"

// The file update.scenario.
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

std::optional<Verdict> VerdictOf(const ScenarioRun& run) {
    if (!run.finished())
        return std::nullopt;
    char time[64];
    std::snprintf(time, sizeof time, "%.1f s of unit time",
                  static_cast<double>(run.duration().count()) / 1e6);
    Verdict verdict{run.passed(),
                    "The scenario " + run.scenario().name + (run.passed() ? " passed" : " failed"),
                    {time}};
    if (!run.passed())
        verdict.details.insert(verdict.details.begin(), run.problem());
    return verdict;
}

// What surrounds a scenario's run: the progress line and the window, if there are any, and whether
// another scenario follows.
struct ScenarioWindow {
    RunProgress* progress = nullptr;
    std::optional<WorkbenchWindow> window;
    bool more = false;
    Workbench::Leave leave = Workbench::Leave::kNext;
};

// The reset command may print to the same terminal at any time.
bool ShowsProgress(const CommandLine& command_line) {
    return !command_line.quiet && !command_line.window && command_line.reset_command.empty();
}

// Returns when the run was over; the operator may look at it for longer.
HostClock::time_point RunOn(VirtualUnit& unit, Operator& op, ScenarioRun& run,
                            const CommandLine& command_line, const CloseSignals& signals,
                            ScenarioWindow& shown) {
    const auto done = [&] {
        if (shown.progress)
            shown.progress->Update(run);
        return run.finished() || signals.raised();
    };
    std::optional<HostClock::time_point> over;
    if (command_line.window) {
        Workbench workbench(*shown.window, unit, op, {.out = command_line.out, .more = shown.more});
        unit.Start();
        run.Start();
        shown.leave = workbench.Run([&] { return signals.raised(); },
                                    [&] {
                                        if (run.finished() && !over)
                                            over = HostClock::now();
                                        return VerdictOf(run);
                                    });
    } else {
        unit.Start();
        run.Start();
        kernel::RunHostThread(done);
    }
    return over.value_or(HostClock::now());
}

// What surrounds every scenario's run.
struct Surroundings {
    const Program& program;
    const CloseSignals& signals;
    ReportFiles& report;
};

// Prints the result and writes its page, too.
RunResult RunOne(const Scenario& scenario, std::size_t number, const CommandLine& command_line,
                 const Surroundings& around, ScenarioWindow& shown) {
    const auto& [program, signals, report] = around;
    RunResult result{scenario.name, false, "an output file cannot be written"};
    const auto give_up = [&] {
        report.WritePage(number, {result, RunRecord{}});
        return result;
    };
    DebugLog log(OutputListener(command_line.verbose));
    if (!command_line.junit.empty())
        log.AddListener([&result](std::chrono::microseconds time, const std::string& line) {
            result.output += TimedLine(time, line) + "\n";
        });
    if (!OpenLog(log, command_line))
        return give_up();
    const ProgramOutput program_output(LineTaker(command_line.verbose));
    const VirtualUnit::Options options = OptionsFor(scenario, command_line);
    VirtualUnit unit(options, program, log, PrintNotice);
    Recorder recorder(unit, options);
    VideoRecorder video;
    if (!StartRecording(unit, recorder, video, command_line))
        return give_up();
    Operator op(unit, command_line.card);
    RunCollector collector;
    RunOptions run_options = RunOptionsFor(command_line, options);
    if (report.wanted()) {
        collector.Begin(unit);
        run_options.began = [&collector](const Step& step) { collector.NoteCommand(step); };
    }
    ScenarioRun run(op, scenario, std::move(run_options));
    const auto began = HostClock::now();
    if (shown.progress)
        shown.progress->Begin();
    result.time = RunOn(unit, op, run, command_line, signals, shown) - began;
    if (shown.progress)
        shown.progress->End();
    run.Stop(signals.raised()                            ? "interrupted"
             : shown.leave == Workbench::Leave::kRestart ? "restarted"
                                                         : "the window was closed");
    result.unit_time = run.duration();
    if (report.wanted())
        collector.BeforeClose();
    const bool closed = CloseUnit(unit);
    if (report.wanted())
        collector.End();
    result.passed = FinishFiles(recorder, video, log) && closed && run.passed();
    if (result.passed)
        result.problem.clear();
    if (!run.passed()) {
        result.problem = run.problem();
        PrintError(run.problem());
    } else if (!closed) {
        result.problem = "the program left something open: " + unit.leftovers();
    }
    const bool one = command_line.scenarios.size() < 2;
    if (one || !command_line.quiet)
        PrintResult(
            scenario.name + ": " + VerdictText(result.passed) + ", " +
            TimesText(result.unit_time, result.time) +
            (result.passed && run.pictures() > 0
                 ? "; " + std::to_string(run.pictures()) + " pictures in " + command_line.screens
                 : ""));
    report.WritePage(number, {result, collector.record(), scenario.sources, run.failed_step()});
    return result;
}

class ReplayVideo final : public ReplayObserver {
  public:
    bool Open(const CommandLine& command_line) { return OpenVideo(video_, command_line); }
    void Begin(VirtualUnit& unit) override { video_.Begin(unit); }
    void BeforeClose() override {}
    void End() override { complete_ = video_.Finish(); }
    bool complete() const { return complete_; }

  private:
    VideoRecorder video_;
    bool complete_ = false;
};

void SavePicture(const Picture& picture, const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string file = folder + "/replay.png";
    std::string problem;
    if (WritePng(picture, file, problem))
        PrintNotice("the replay's screen is in " + file);
    else
        PrintError(problem);
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
        options.trace = [](const std::string& command) { PrintCommand(kernel::Now(), command); };
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
        PrintError(problem);
    if (!problems.empty())
        return kExitWrongUsage;
    ReportFiles report(command_line.report, RunFiles(command_line));
    if (!report.Open())
        return kExitFailed;
    ScenarioWindow shown;
    if (command_line.window)
        shown.window.emplace(command_line.unit, command_line.kiosk);
    RunProgress progress(scenarios.size());
    if (ShowsProgress(command_line))
        shown.progress = &progress;
    std::vector<RunResult> results;
    const auto began = HostClock::now();
    for (std::size_t number = 0; number < scenarios.size(); ++number) {
        shown.more = number + 1 < scenarios.size();
        RunResult result;
        int run = 1;
        do {
            result = RunOne(scenarios[number], number, NumberedOutputs(command_line, run++),
                            {program, signals, report}, shown);
        } while (shown.leave == Workbench::Leave::kRestart);
        results.push_back(std::move(result));
        // The rest is not run.
        if (signals.raised() || (shown.more && shown.leave == Workbench::Leave::kClosed))
            break;
    }
    const auto passed = std::size_t(std::ranges::count(results, true, &RunResult::passed));
    if (scenarios.size() > 1) {
        const std::chrono::duration<double> took = HostClock::now() - began;
        char time[32];
        std::snprintf(time, sizeof time, " in %.1f s", took.count());
        PrintResult(VerdictText(passed == scenarios.size(), std::to_string(passed) + " of " +
                                                                std::to_string(scenarios.size()) +
                                                                " passed") +
                    time);
    }
    report.WriteIndex(results);
    const bool reported =
        command_line.junit.empty() || WriteTextFile(command_line.junit, JUnitReport(results));
    return reported && report.complete() && passed == scenarios.size() ? EXIT_SUCCESS : kExitFailed;
}

int RunAutomatically(const CommandLine& command_line, const Program& program,
                     const CloseSignals& signals) {
    CommandLine with_pictures = command_line;
    with_pictures.verbose = !command_line.quiet;
    if (with_pictures.screens.empty())
        with_pictures.screens = "out/screens";
    std::vector<std::string> problems;
    const auto scenario =
        ReadScenario(std::string(UpdateScenario()), kUpdateScenarioFile, problems);
    for (const std::string& problem : problems)
        PrintError(problem);
    ScenarioWindow none;
    RunProgress progress(1);
    if (ShowsProgress(command_line))
        none.progress = &progress;
    ReportFiles report(command_line.report, RunFiles(command_line));
    if (!scenario || !report.Open())
        return kExitFailed;
    const RunResult result = RunOne(*scenario, 0, with_pictures, {program, signals, report}, none);
    report.WriteIndex({&result, 1});
    return result.passed && report.complete() ? EXIT_SUCCESS : kExitFailed;
}

int RunReplay(const CommandLine& command_line, const Program& program) {
    DebugLog log(OutputListener(!command_line.quiet));
    if (!OpenLog(log, command_line))
        return kExitFailed;
    const ProgramOutput program_output(LineTaker(!command_line.quiet));
    std::string problem;
    const auto recording = ReadRecording(command_line.replay, problem);
    if (!recording) {
        PrintError(problem);
        return kExitWrongUsage;
    }
    ReportFiles report(command_line.report, RunFiles(command_line));
    if (!report.Open())
        return kExitFailed;
    ReplayVideo video;
    if (!video.Open(command_line))
        return kExitFailed;
    RunCollector collector;
    std::vector<ReplayObserver*> observers = {&video};
    if (report.wanted())
        observers.push_back(&collector);
    const auto began = HostClock::now();
    const ReplayResult result = Replay(*recording, program, log, PrintNotice, observers);
    const HostClock::duration took = HostClock::now() - began;
    if (!log.problem().empty())
        PrintError(log.problem());
    PrintResult(ReplayReport(*recording, result, VerdictText(!result.difference),
                             TimesText(result.time, took)));
    RunResult run{RunName(command_line.replay), !result.difference && log.problem().empty(),
                  log.problem(), result.time, took};
    if (result.difference)
        run.problem =
            ReplayReport(*recording, result, VerdictWord(false), TimesText(result.time, took));
    if (report.wanted())
        collector.NoteRecorded(*recording);
    report.WritePage(0, {run, collector.record()});
    report.WriteIndex({&run, 1});
    if (!result.difference)
        return run.passed && report.complete() && video.complete() ? EXIT_SUCCESS : kExitFailed;
    if (result.screen)
        SavePicture(*result.screen,
                    command_line.screens.empty() ? "out/screens" : command_line.screens);
    return kExitFailed;
}

std::string_view UpdateScenario() {
    return {tolvane_update_scenario_begin, tolvane_update_scenario_end};
}

}  // namespace unit
