#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/platform_fixture.h"

namespace tests {

// The program's lines on the debug output, without the program's prefix, which every line must
// have, and with "#" for the line number of a source file.
inline std::vector<std::string> ProgramLog(const PlainBoard& board) {
    static const std::string prefix = "[Tolvane.exe] ";
    std::vector<std::string> log;
    for (const std::wstring& wide : board.lines()) {
        std::string line;
        for (const wchar_t character : wide)
            line += character < 0x100 ? static_cast<char>(character) : '?';
        EXPECT_TRUE(line.starts_with(prefix)) << line;
        if (const std::size_t source = line.rfind(".cpp("); source != line.npos)
            line.replace(source, line.npos, ".cpp(#)");
        log.push_back(line.substr(prefix.size()));
    }
    return log;
}

}  // namespace tests
