#pragma once

#include <optional>
#include <string>
#include <vector>

namespace unitctl {

struct CommandLine {
    std::string unit = "unit";
    std::vector<std::string> words;  // of the command; at least one
};

// Reads the command line. On --help and on wrong usage it has printed what is to be said and sets
// `exit_status` (0 and 2).
std::optional<CommandLine> ReadCommandLine(int count, const char* const* arguments,
                                           int& exit_status);

}  // namespace unitctl
