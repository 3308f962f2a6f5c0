#include "unit/tolvane/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "control/build_info.h"
#include "control/local_socket.h"
#include "control/words.h"
#include "unit/tolvane/report_files.h"
#include "unit/tolvane/run_unit.h"
#include "unit/traces/trace_format.h"
#include "unit/video/video_format.h"

namespace unit {
namespace {

constexpr double kSlowest = 0.1;
constexpr double kFastest = 1000;

// A bare word is more likely a typing error than a file in the working folder.
std::string CheckCom9(const std::string& value) {
    if (value == "sim" || value == "pty" || value.find('/') != std::string::npos)
        return {};
    return "'" + value +
           "' is not allowed; allowed are sim, pty and the path of a tty "
           "such as /dev/ttyUSB0";
}

std::string CheckUnit(const std::string& value) {
    if (control::IsSocketName(value))
        return {};
    return "'" + value + "' is not allowed; allowed are " +
           std::string(control::kSocketNameAllowed);
}

std::string CheckTrace(const std::string& value) {
    if (TraceFormatOf(value))
        return {};
    return "'" + value + "' is not allowed; allowed are files that end with " + TraceEndings();
}

std::string CheckVideo(const std::string& value) {
    if (VideoFormatOf(value))
        return {};
    return "'" + value + "' is not allowed; allowed are files that end with " + VideoEndings();
}

std::string CheckFormat(const std::string& value) {
    if (TraceFormatNamed(value))
        return {};
    return "'" + value + "' is not allowed; allowed are " + TraceFormatNames();
}

std::string CheckFolder(const std::string& value) {
    std::error_code ignored;
    if (std::filesystem::is_directory(value, ignored))
        return {};
    return "'" + value + "' is not allowed; allowed is a folder that exists";
}

// CLI11's own range check does not report what is allowed.
template <class Number>
CLI::Validator Within(Number least, Number most, const std::string& allowed) {
    return CLI::Validator(
        [least, most, allowed](std::string& value) {
            Number number{};
            if (CLI::detail::lexical_cast(value, number) && number >= least && number <= most)
                return std::string();
            return "'" + value + "' is not allowed; allowed is " + allowed;
        },
        "");
}

void AddModes(CLI::App& app, CommandLine& command_line) {
    app.add_flag("--headless", command_line.headless,
                 "Run without a window until Ctrl-C or SIGTERM");
    app.add_flag("--auto", command_line.automatic,
                 "Run the whole update without a window, operated by a built-in scenario; exit "
                 "status 0 when the success screen was reached, otherwise 1");
    app.add_flag("--kiosk", command_line.kiosk,
                 "Show only the unit's screen, over the whole display");
    app.add_flag("--stats", command_line.stats,
                 "Print at the end how many pictures the window showed while something moved");
    app.add_option("--scenario", command_line.scenarios,
                   "Run scenario files, by default in simulated time and without a window; exit "
                   "status 0 when all passed, 1 when one failed, 2 when a file has an error")
        ->excludes("--auto")
        ->type_name("FILE");
    app.add_option("--replay", command_line.replay,
                   "Run the program in simulated time against a recording; exit status 0 when it "
                   "did the same again, 1 with the first difference when not, 2 when the file is "
                   "damaged or no recording")
        ->type_name("FILE");
}

void AddUnitOptions(CLI::App& app, CommandLine& command_line, std::string& com9) {
    app.add_option("--com9", com9,
                   "What the serial port is connected to: sim (a simulated DVR in memory), pty "
                   "(the same behind a pseudo-terminal) or the path of a tty with a real DVR")
        ->check(CheckCom9)
        ->type_name("sim|pty|PATH");
    app.add_option("--reset-command", command_line.reset_command,
                   "With --com9 PATH: the shell command that resets the DVR there, such as "
                   "'dvrsim --send reset'; by default the operator is asked to switch the DVR's "
                   "power off and on")
        ->type_name("CMD");
    app.add_option("--card", command_line.card,
                   "Folder that acts as the SD card; by default one with an update image is made")
        ->check(CheckFolder)
        ->type_name("DIR");
    app.add_option("--speed", command_line.speed,
                   "Run N times as fast as the host's clock, 0.1 to 1000")
        ->check(Within(kSlowest, kFastest, "a number from 0.1 to 1000"))
        ->type_name("N");
    app.add_option("--seed", command_line.seed,
                   "Seed of the simulation's random numbers (default 1)")
        ->check(Within<std::int64_t>(0, UINT32_MAX, "a whole number from 0 to 4294967295"))
        ->type_name("N");
    app.add_option("--unit", command_line.unit,
                   "Name of this unit (default unit), for unitctl --unit NAME and for several "
                   "units at the same time")
        ->check(CheckUnit)
        ->type_name("NAME");
}

void AddOutputs(CLI::App& app, CommandLine& command_line) {
    app.add_option("--screens", command_line.screens,
                   "Folder for the pictures of --auto (default out/screens) and of scenarios")
        ->type_name("DIR");
    app.add_option("--out", command_line.out,
                   "Folder for the screen, the state and the debug output of a failed scenario "
                   "(default out)")
        ->type_name("DIR");
    app.add_option("--log", command_line.log, "File for the program's debug output")
        ->type_name("FILE");
    app.add_option("--record", command_line.record,
                   "File for a recording of the program's inputs and outputs, for --replay")
        ->excludes("--replay")
        ->type_name("FILE");
    app.add_option("--trace", command_line.trace,
                   "File for a trace of the run, by its ending: .pcapng (frames, for network "
                   "analyzers), .json (a timeline) or .txt")
        ->excludes("--replay")
        ->check(CheckTrace)
        ->type_name("FILE");
    app.add_option(
           "--report", command_line.report,
           "Folder for a report of each run of --scenario, --auto or --replay as a page for "
           "a browser, with its screens, its traffic and its output, and an index.html")
        ->type_name("DIR");
    app.add_option("--video", command_line.video,
                   "File for a video of the unit's screen, by its ending: " + VideoEndings() +
                       "; ffmpeg encodes it")
        ->check(CheckVideo)
        ->type_name("FILE");
    app.add_option("--video-speed", command_line.video_speed,
                   "Let the video play N times as fast as the unit's time, 0.1 to 1000 (default 1)")
        ->needs("--video")
        ->check(Within(kSlowest, kFastest, "a number from 0.1 to 1000"))
        ->type_name("N");
}

void AddConvert(CLI::App& app, CommandLine& command_line) {
    CLI::App& convert = *app.add_subcommand(
        "convert", "Convert a recording to a trace that other tools read (tolvane convert --help)");
    app.require_subcommand(0, 1);
    convert.set_help_flag("-h,--help", "Print this help");
    convert.add_option("recording", command_line.convert, "The recording")
        ->required()
        ->type_name("RECORDING");
    convert
        .add_option("--to", command_line.convert_to,
                    "pcapng (the frames of the serial line, for network analyzers), perfetto (a "
                    "timeline in the JSON format of trace events) or text")
        ->required()
        ->check(CheckFormat)
        ->type_name("FORMAT");
    convert
        .add_option("--output", command_line.convert_output,
                    "File for the trace, - for standard output; by default the recording's name "
                    "with the ending .pcapng, .json or .txt")
        ->type_name("FILE");
}

void AddScenarioOptions(CLI::App& app, CommandLine& command_line) {
    app.add_flag("--verbose", command_line.verbose,
                 "Print a scenario's commands and the program's output while it runs");
    app.add_flag("--quiet", command_line.quiet,
                 "Print only failures and one summary line; for --headless, --auto and --replay: "
                 "not the program's output")
        ->excludes("--verbose");
    app.add_flag("--window", command_line.window,
                 "Show a scenario in the window, at the speed of the host's clock or of --speed")
        ->needs("--scenario")
        ->excludes("--headless");
    app.add_option("--junit", command_line.junit,
                   "File for the results of all scenarios in the XML format of JUnit")
        ->needs("--scenario")
        ->type_name("FILE");
    app.add_flag("--update-screens", command_line.update_screens,
                 "Write the pictures that scenarios expect instead of comparing with them")
        ->needs("--scenario");
    app.add_flag("--help-scenarios", command_line.help_scenarios,
                 "Print the reference of the scenario language as Markdown");
}

void SetLine(CommandLine& command_line, const std::string& com9) {
    if (com9 == "sim") {
        command_line.line = DvrPort::Line::kMemory;
    } else if (com9 == "pty") {
        command_line.line = DvrPort::Line::kPseudoTerminal;
    } else {
        command_line.line = DvrPort::Line::kTty;
        command_line.tty = com9;
    }
}

// Devices such as /dev/null take the output of several.
bool NameOneFile(const std::string& one, const std::string& other) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (fs::exists(one, ignored) && !fs::is_regular_file(one, ignored))
        return false;
    return fs::equivalent(one, other, ignored) ||
           fs::weakly_canonical(fs::absolute(one, ignored), ignored) ==
               fs::weakly_canonical(fs::absolute(other, ignored), ignored);
}

}  // namespace

std::vector<std::string> RunFiles(const CommandLine& command_line) {
    if (!command_line.replay.empty())
        return {command_line.replay};
    if (command_line.automatic)
        return {kUpdateScenarioFile};
    return command_line.scenarios;
}

namespace {

// Two outputs in one file, or an output in a file that is read, would damage it.
std::string FindSharedFile(const CommandLine& command_line) {
    struct NamedFile {
        std::string option;
        std::string path;
    };
    std::vector<NamedFile> files{{"--log", command_line.log},
                                 {"--record", command_line.record},
                                 {"--trace", command_line.trace},
                                 {"--video", command_line.video},
                                 {"--junit", command_line.junit}};
    if (!command_line.report.empty())
        for (const std::string& page : ReportPaths(command_line.report, RunFiles(command_line)))
            files.push_back({"--report", page});
    const std::size_t outputs = files.size();
    files.push_back({"--replay", command_line.replay});
    for (const std::string& scenario : command_line.scenarios)
        files.push_back({"--scenario", scenario});
    for (std::size_t output = 0; output < outputs; ++output)
        for (std::size_t other = output + 1; other < files.size(); ++other)
            if (!files[output].path.empty() && !files[other].path.empty() &&
                NameOneFile(files[output].path, files[other].path))
                return files[output].option + " and " + files[other].option +
                       " name the same file '" + files[output].path +
                       "'; allowed is a file for each";
    return {};
}

// What is wrong with options that are right one by one; empty when nothing is.
std::string FindConflict(const CLI::App& app, const CommandLine& command_line) {
    if (!command_line.convert.empty())
        for (const CLI::Option* const option : app.get_options())
            if (option->count() > 0)
                return option->get_name() +
                       " is not allowed with convert; allowed are the options "
                       "that tolvane convert --help lists";
    if (command_line.scenarios.size() > 1 &&
        (!command_line.log.empty() || !command_line.record.empty() || !command_line.trace.empty() ||
         !command_line.video.empty()))
        return "--log, --record, --trace and --video are allowed with one scenario file only";
    if (!command_line.reset_command.empty() && command_line.line != DvrPort::Line::kTty)
        return "--reset-command is allowed with --com9 PATH only; the simulated DVR needs none";
    if (!command_line.report.empty() && RunFiles(command_line).empty())
        return "--report is allowed with --scenario, --auto and --replay only";
    return FindSharedFile(command_line);
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status) {
    CommandLine command_line;
    std::string com9 = "sim";
    CLI::App app(
        "Tolvane on a virtual in-car unit: a wizard that guides the driver through the firmware "
        "update of the dash camera (DVR).\nBy default it opens a window with the unit's screen, "
        "where the mouse acts as the finger, and a panel that operates everything around the "
        "unit.",
        "tolvane");
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", "tolvane " + control::BuildInfo(),
                         "Print the version, the commit and the build type");
    AddModes(app, command_line);
    AddUnitOptions(app, command_line, com9);
    AddOutputs(app, command_line);
    AddScenarioOptions(app, command_line);
    AddConvert(app, command_line);
    std::string problem;
    try {
        app.parse(count, arguments);
        SetLine(command_line, com9);
        problem = FindConflict(app, command_line);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        exit_status = 0;
        return std::nullopt;
    } catch (const CLI::CallForVersion& version) {
        std::printf("%s\n", version.what());
        exit_status = 0;
        return std::nullopt;
    } catch (const CLI::ExtrasError& error) {
        problem =
            control::OneLine(error.what()) + "; allowed are the options that tolvane --help lists";
    } catch (const CLI::ParseError& error) {
        problem = control::OneLine(error.what());
    }
    if (problem.empty())
        return command_line;
    PrintError(problem);
    exit_status = kExitWrongUsage;
    return std::nullopt;
}

}  // namespace unit
