#include "unitctl/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "control/local_socket.h"
#include "control/socket_client.h"

namespace unitctl {
namespace {

constexpr char kDescription[] =
    "Drives the unit that `tolvane` runs: what hands do in the car, and what the unit's other\n"
    "applications do.";

constexpr char kFooter[] =
    R"(A command is one of those that the running unit lists:

  unitctl help                 all of them, with what they do
  unitctl tap Next             touches the button with that caption
  unitctl card in FOLDER       puts in an SD card that holds what the folder holds
  unitctl power off            takes external power away
  unitctl request suspend      asks all applications, waits for the acknowledgement
  unitctl screenshot FILE.png  writes what the screen shows
  unitctl state                tells everything, as JSON
  unitctl watch                tells every frame and broadcast until Ctrl-C; also: watch all
  unitctl run FILE             follows a scenario on the running unit; - is standard input

Ends with 0 when the command was done, 1 when it was refused or failed, 2 after wrong usage,
3 when no unit is running.
)";

class Help : public CLI::Formatter {
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: unitctl [OPTIONS] COMMAND...\n\n";
    }
};

int Refuse(const std::string& problem) {
    std::string line = problem;
    std::ranges::replace(line, '\n', ' ');
    std::fprintf(stderr, "unitctl: %s\n", line.c_str());
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
    app.add_option("--unit", command_line.unit, "The unit to drive, as its --unit named it")
        ->type_name("NAME");
    // The command's own words are the unit's business.
    app.prefix_command();
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        exit_status = control::kExitDone;
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        exit_status = Refuse(error.what());
        return std::nullopt;
    }
    command_line.words = app.remaining();
    if (!control::IsSocketName(command_line.unit)) {
        exit_status = Refuse("--unit: '" + command_line.unit + "' is not allowed; allowed are " +
                             std::string(control::kSocketNameAllowed));
        return std::nullopt;
    }
    if (command_line.words.empty() || command_line.words.front().starts_with('-')) {
        exit_status = Refuse((command_line.words.empty()
                                  ? "a command is missing"
                                  : "'" + command_line.words.front() + "' is not allowed") +
                             std::string("; unitctl --help tells what there is"));
        return std::nullopt;
    }
    return command_line;
}

}  // namespace unitctl
