#pragma once

#include <optional>
#include <string>
#include <vector>

namespace unitctl {

struct CommandLine {
    std::string unit = "unit";
    std::vector<std::string> words;  // of the command; at least one
};

// Reads the command line. For --help and wrong usage it prints the text, sets `exit_status` (0 or
// 2) and returns nothing.
std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status);

}  // namespace unitctl
