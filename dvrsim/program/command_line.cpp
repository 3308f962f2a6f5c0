#include "dvrsim/program/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "control/build_info.h"
#include "control/local_socket.h"
#include "control/socket_client.h"
#include "control/terminal.h"
#include "control/words.h"
#include "dvrsim/frame_codec.h"

namespace dvrsim {
namespace {

constexpr double kSlowest = 0.1;
constexpr double kFastest = 1000;

constexpr char kDescription[] =
    "A simulated DVR (dash camera) at the end of a serial line.\n"
    "Without DEVICE it creates a pseudo-terminal and prints its path. Start the wizard with\n"
    "\n"
    "    dvrsim --link /tmp/dvr\n"
    "    tolvane --com9 /tmp/dvr --reset-command 'dvrsim --send reset'\n"
    "\n"
    "It executes commands from its standard input, one per line, and from dvrsim --send: power "
    "on|off,\n"
    "reset, card in, card out, fault silent on, state, quit; help lists all of them.\n"
    "It ends on quit, Ctrl-C or SIGTERM.";

std::string CheckName(const std::string& name) {
    return control::IsSocketName(name) ? std::string()
                                       : "'" + name + "' is not allowed; allowed are " +
                                             std::string(control::kSocketNameAllowed);
}

std::string CheckVersion(const std::string& version) {
    return !version.empty() && version.size() <= kMaxPayloadBytes
               ? std::string()
               : "'" + version + "' is not allowed; allowed are 1 to 64 bytes";
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status) {
    CommandLine line;
    std::vector<std::string> send;
    bool off = false;
    CLI::App app(kDescription, "dvrsim");
    app.set_help_flag("-h,--help", "Show this help and end");
    app.set_version_flag("--version", "dvrsim " + control::BuildInfo(),
                         "Print the version, the commit and the build type");
    CLI::Option* const device = app.add_option(
        "DEVICE", line.device, "Serial device to use, such as /dev/ttyUSB0 (460800 baud, 8N1)");
    device->type_name(" ");
    app.add_option("--link", line.link, "Create a symlink to the pseudo-terminal, for a fixed path")
        ->excludes(device)
        ->type_name("PATH");
    app.add_option("--name", line.name,
                   "Name of the control socket, to run several DVRs (default dvrsim)")
        ->check(CheckName)
        ->type_name("NAME");
    CLI::Option* const send_option =
        app.add_option("--send", send,
                       "Send a command to the running dvrsim, print its reply and end: 0 if it was "
                       "done, 1 if refused, 2 if it is no command, 3 if none is running")
            ->excludes(device)
            ->expected(1, -1)
            ->type_name("COMMAND...");
    app.add_option("--card", line.process.image_card,
                   "Folder that \"card in\" inserts (default: a new one with an update image)")
        ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
        ->type_name("FOLDER");
    app.add_option("--firmware", line.process.dvr.firmware_version, "Firmware version at the start")
        ->check(CheckVersion)
        ->type_name("VERSION");
    app.add_option("--speed", line.process.speed, "Run N times as fast as the clock, 0.1 to 1000")
        ->check(CLI::Range(kSlowest, kFastest).description(""))
        ->type_name("N");
    app.add_option("--seed", line.process.dvr.seed,
                   "Seed of the simulation's random numbers (default 1)")
        ->type_name("N");
    app.add_flag("--off", off, "Start without power");
    app.add_flag("-v,--verbose", line.process.verbose,
                 "Print every frame and every state, with the time of the simulation");
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
        const bool extra = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
        control::PrintError(
            "dvrsim", control::OneLine(error.what()) +
                          (extra ? "; allowed are the options that dvrsim --help lists" : ""));
        exit_status = control::kExitWrongUsage;
        return std::nullopt;
    }
    line.process.power_on = !off;
    if (*send_option)
        line.send = send.size() == 1 ? send.front() : control::JoinWords(send);
    return line;
}

}  // namespace dvrsim
