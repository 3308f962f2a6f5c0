#include "unitctl/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "control/build_info.h"
#include "control/local_socket.h"
#include "control/socket_client.h"
#include "control/terminal.h"
#include "control/words.h"

namespace unitctl {
namespace {

constexpr char kDescription[] =
    "Controls the unit that `tolvane` runs: sends it what the operator and the unit's other\n"
    "applications can do.";

constexpr char kFooter[] =
    R"(The running unit lists all commands. The most common ones:

  unitctl help                 lists all commands
  unitctl tap Next             touches the button with that caption
  unitctl card in FOLDER       inserts an SD card with the content of the folder
  unitctl power off            disconnects external power
  unitctl request suspend      sends the request and waits for the acknowledgement
  unitctl wait button Next     waits, as a scenario does; also: expect
  unitctl clock pause          stops the unit's time; also: clock resume, clock step, clock speed 2
  unitctl screenshot FILE.png  writes a picture of the screen
  unitctl state                prints the state of the unit as JSON
  unitctl watch                prints frames and broadcasts until Ctrl-C; also: watch all
  unitctl run FILE             runs a scenario on the running unit; - is standard input
  unitctl restart              begins another run on a new unit; quit ends the unit

The exit status is 0 if the command was done, 1 if it was refused or failed, 2 after wrong usage,
3 if no unit is running.
)";

class Help : public CLI::Formatter {
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: unitctl [OPTIONS] COMMAND...\n\n";
    }
};

int ReportWrongUsage(const std::string& problem) {
    control::PrintError("unitctl", control::OneLine(problem));
    return control::kExitWrongUsage;
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status) {
    CommandLine command_line;
    CLI::App app(kDescription, "unitctl");
    app.footer(kFooter);
    app.formatter(std::make_shared<Help>());
    app.set_help_flag("-h,--help", "Show this help and end");
    app.set_version_flag("--version", "unitctl " + control::BuildInfo(),
                         "Print the version, the commit and the build type");
    app.add_option("--unit", command_line.unit, "The unit's name, as given to its --unit")
        ->type_name("NAME");
    // The words of the command are for the unit.
    app.prefix_command();
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        exit_status = control::kExitDone;
        return std::nullopt;
    } catch (const CLI::CallForVersion& version) {
        std::printf("%s\n", version.what());
        exit_status = control::kExitDone;
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        exit_status = ReportWrongUsage(error.what());
        return std::nullopt;
    }
    command_line.words = app.remaining();
    // A command in quotes is one argument.
    if (std::string problem; command_line.words.size() == 1) {
        auto words = control::SplitWords(command_line.words.front(), problem);
        if (!words) {
            exit_status = ReportWrongUsage(problem);
            return std::nullopt;
        }
        command_line.words = *std::move(words);
    }
    if (!control::IsSocketName(command_line.unit)) {
        exit_status =
            ReportWrongUsage("--unit: '" + command_line.unit + "' is not allowed; allowed are " +
                             std::string(control::kSocketNameAllowed));
        return std::nullopt;
    }
    if (command_line.words.empty() || command_line.words.front().starts_with('-')) {
        exit_status = ReportWrongUsage(
            (command_line.words.empty() ? "a command is missing"
                                        : "'" + command_line.words.front() + "' is not allowed") +
            std::string("; unitctl --help lists the usage"));
        return std::nullopt;
    }
    return command_line;
}

}  // namespace unitctl
