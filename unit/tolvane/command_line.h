#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "unit/devices/dvr_port.h"

namespace unit {

// The command's exit status when something went wrong.
inline constexpr int kExitFailed = 1;
inline constexpr int kExitWrongUsage = 2;

struct CommandLine {
    bool headless = false;
    bool automatic = false;
    bool kiosk = false;
    bool stats = false;
    DvrPort::Line line = DvrPort::Line::kMemory;
    std::string tty;
    std::string reset_command;
    std::string card;
    std::optional<double> speed;
    std::optional<std::uint32_t> seed;
    std::string screens;
    std::string log;
    std::string unit = "unit";
    std::vector<std::string> scenarios;
    std::string out = "out";
    bool update_screens = false;
    bool verbose = false;
    bool quiet = false;
    bool window = false;
    bool help_scenarios = false;
    std::string record;
    std::string trace;
    std::string video;
    double video_speed = 1;
    std::string junit;
    std::string report;
    std::string replay;
    // The subcommand `convert`: a recording, the name of the format, and the file that is written.
    std::string convert;
    std::string convert_to;
    std::string convert_output;
};

// The name of the built-in scenario of --auto.
inline constexpr char kUpdateScenarioFile[] = "update.scenario";

// The files of the runs that the command makes by itself: scenarios or a recording.
std::vector<std::string> RunFiles(const CommandLine& command_line);

// Empty after --help and after a wrong option or value; then the help or the error was printed, and
// `exit_status` is set.
std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status);

}  // namespace unit
