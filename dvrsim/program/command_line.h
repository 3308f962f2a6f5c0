#pragma once

#include <optional>
#include <string>

#include "dvrsim/program/dvr_process.h"

namespace dvrsim {

// What the command line asks for.
struct CommandLine {
    DvrProcess::Options process;
    // A serial device; a pseudo-terminal is made when it is empty.
    std::string device;
    std::string link;
    std::string name = "dvrsim";
    // A command for a dvrsim that runs already.
    std::optional<std::string> send;
};

// Reads the command line. On --help and on a wrong option or value it has printed what is to be
// said and sets `exit_status` (0 and 2).
std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status);

}  // namespace dvrsim
