#pragma once

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/support/platform_fixture.h"

namespace tests {

// The program's lines on the debug output, without the program's prefix, which every line must
// have, and with "#" for the line number of a source file.
inline std::vector<std::string> ProgramLog(const PlainBoard& board) {
    static const std::string prefix = "[Tolvane.exe] ";
    static const std::regex line_number("\\.cpp\\([0-9]+\\)$");
    std::vector<std::string> log;
    for (const std::wstring& wide : board.lines()) {
        std::string line;
        for (const wchar_t character : wide)
            line += character < 0x80 ? static_cast<char>(character) : '?';
        EXPECT_TRUE(line.starts_with(prefix)) << line;
        log.push_back(std::regex_replace(line.substr(prefix.size()), line_number, ".cpp(#)"));
    }
    return log;
}

}  // namespace tests
