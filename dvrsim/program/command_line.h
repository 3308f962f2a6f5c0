#pragma once

#include <optional>
#include <string>

#include "dvrsim/program/dvr_process.h"

namespace dvrsim {

// The options of the command line.
struct CommandLine {
    DvrProcess::Options process;
    // A serial device; empty creates a pseudo-terminal.
    std::string device;
    std::string link;
    std::string name = "dvrsim";
    // A command for the dvrsim that is running.
    std::optional<std::string> send;
};

// Reads the command line. For --help and wrong usage it prints the text, sets `exit_status` (0 or
// 2) and returns nothing.
std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status);

}  // namespace dvrsim
