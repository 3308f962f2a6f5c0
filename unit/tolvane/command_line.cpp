#include "unit/tolvane/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "control/local_socket.h"
#include "control/words.h"
#include "unit/tolvane/exit_status.h"

namespace unit {
namespace {

constexpr double kSlowest = 0.1;
constexpr double kFastest = 1000;

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

// "sim", "pty" or a path: a bare word is more likely a slip than a file in this folder.
std::string CheckCom9(const std::string& value) {
    if (value == "sim" || value == "pty" || value.find('/') != std::string::npos)
        return {};
    return "'" + value +
           "' is not allowed; allowed are sim, pty and the path of a tty "
           "such as /dev/ttyUSB0";
}

// A check whose refusal tells the value and what is allowed.
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

std::string CheckUnit(const std::string& value) {
    if (control::IsSocketName(value))
        return {};
    return "'" + value + "' is not allowed; allowed are " +
           std::string(control::kSocketNameAllowed);
}

std::string CheckFolder(const std::string& value) {
    std::error_code ignored;
    if (std::filesystem::is_directory(value, ignored))
        return {};
    return "'" + value + "' is not allowed; allowed is a folder that exists";
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status) {
    CommandLine command_line;
    std::string com9 = "sim";
    double speed = 1.0;
    CLI::App app(
        "Tolvane on a virtual in-car unit: a wizard that leads through the firmware update of the "
        "dash camera (DVR).\nWithout options: a window with the unit's screen; the mouse is the "
        "finger, and the window tells the keys for what hands do in the car.",
        "tolvane");
    app.set_help_flag("-h,--help", "Show this help and end");
    app.add_flag("--headless", command_line.headless, "No window; ends on Ctrl-C or SIGTERM");
    app.add_flag("--auto", command_line.automatic,
                 "A built-in user walks the whole update without a window; ends with 0 when the "
                 "success screen was reached, else with 1");
    app.add_flag("--kiosk", command_line.kiosk,
                 "The unit's screen alone over the whole display, without the panel");
    app.add_flag("--stats", command_line.stats,
                 "At the end, say how many pictures the window showed while something moved");
    CLI::Option* const scenario_option =
        app.add_option("--scenario", command_line.scenarios,
                       "Run scenario files, in simulated time and without a window unless told "
                       "otherwise; ends with 0 when all passed, 1 when one failed, 2 when one is "
                       "not in order")
            ->excludes("--auto")
            ->type_name("FILE");
    app.add_option("--com9", com9,
                   "What is at the serial port: sim (a simulated DVR in memory), pty (the same "
                   "behind a pseudo-terminal) or the path of a tty with a real DVR")
        ->check(CheckCom9)
        ->type_name("sim|pty|PATH");
    app.add_option("--reset-command", command_line.reset_command,
                   "With --com9 PATH: the shell command that resets the DVR there, such as "
                   "'dvrsim --send reset'; without one you are told to switch its power off and on")
        ->type_name("CMD");
    app.add_option("--card", command_line.card,
                   "Folder that acts as the SD card; without it one with an update image is made")
        ->check(CheckFolder)
        ->type_name("DIR");
    CLI::Option* const speed_option =
        app.add_option("--speed", speed, "Run N times as fast as the clock, 0.1 to 1000")
            ->check(Within(kSlowest, kFastest, "a number from 0.1 to 1000"))
            ->type_name("N");
    app.add_option("--seed", command_line.seed,
                   "Number that the simulation's chances come from (default 1)")
        ->check(Within<std::int64_t>(0, UINT32_MAX, "a whole number from 0 to 4294967295"))
        ->type_name("N");
    app.add_option("--screens", command_line.screens,
                   "Folder for the pictures of --auto (default out/screens) and of scenarios")
        ->type_name("DIR");
    app.add_option("--out", command_line.out,
                   "Folder for what a failed scenario leaves: screen, state, debug output "
                   "(default out)")
        ->type_name("DIR");
    app.add_flag("--verbose", command_line.verbose,
                 "Print a scenario's commands and the debug output while it runs");
    app.add_flag("--window", command_line.window,
                 "Show a scenario in the window, at the pace of the clock or of --speed")
        ->needs(scenario_option)
        ->excludes("--headless");
    app.add_flag("--update-screens", command_line.update_screens,
                 "Make the pictures that scenarios expect instead of comparing with them")
        ->needs(scenario_option);
    app.add_flag("--help-scenarios", command_line.help_scenarios,
                 "Print everything that a scenario file can say, as Markdown, and end");
    app.add_option("--log", command_line.log, "File that takes the program's debug output")
        ->type_name("FILE");
    app.add_option(
           "--unit", command_line.unit,
           "Name of this unit (default unit), for unitctl --unit NAME and for several units "
           "side by side")
        ->check(CheckUnit)
        ->type_name("NAME");
    CLI::Option* const record_option =
        app.add_option("--record", command_line.record,
                       "File that takes everything the program is given and does, for --replay")
            ->type_name("FILE");
    app.add_option(
           "--replay", command_line.replay,
           "Run the program in simulated time against a recording; ends with 0 when it did "
           "the same again, with 1 and the first difference when not, with 2 when the file is "
           "no recording or damaged")
        ->excludes(record_option)
        ->type_name("FILE");
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        exit_status = 0;
        return std::nullopt;
    } catch (const CLI::ExtrasError& error) {
        std::fprintf(stderr, "tolvane: %s; allowed are the options that tolvane --help lists\n",
                     control::OneLine(error.what()).c_str());
        exit_status = kExitWrongUsage;
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "tolvane: %s\n", control::OneLine(error.what()).c_str());
        exit_status = kExitWrongUsage;
        return std::nullopt;
    }
    const bool one_run = !command_line.log.empty() || !command_line.record.empty();
    if (command_line.scenarios.size() > 1 && one_run) {
        std::fputs("tolvane: --log and --record take one scenario; allowed is one file\n", stderr);
        exit_status = kExitWrongUsage;
        return std::nullopt;
    }
    SetLine(command_line, com9);
    if (!command_line.reset_command.empty() && command_line.line != DvrPort::Line::kTty) {
        std::fputs(
            "tolvane: --reset-command is for a DVR at --com9 PATH; the simulated one needs none\n",
            stderr);
        exit_status = kExitWrongUsage;
        return std::nullopt;
    }
    if (*speed_option)
        command_line.speed = speed;
    return command_line;
}

}  // namespace unit
