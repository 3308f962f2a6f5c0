#pragma once

#include <functional>
#include <string>

namespace unitctl {

// Gives the lines of a command's reply their colours on standard output; empty for a command whose
// replies have none.
std::function<std::string(const std::string& line)> PaintFor(const std::string& command);

}  // namespace unitctl
