#pragma once

#include <string>
#include <vector>

#include "tests/support/platform_fixture.h"

namespace tests {

// The program's lines on the debug output, without the program's prefix, which every line must
// have, and with "#" for the line number of a source file.
std::vector<std::string> ProgramLog(const PlainBoard& board);

}  // namespace tests
