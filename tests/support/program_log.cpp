#include "tests/support/program_log.h"

#include <gtest/gtest.h>

#include <regex>

namespace tests {
namespace {

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t character : text)
        narrow += character < 0x80 ? static_cast<char>(character) : '?';
    return narrow;
}

}  // namespace

std::vector<std::string> ProgramLog(const PlainBoard& board) {
    static const std::string prefix = "[Tolvane.exe] ";
    static const std::regex line_number("\\.cpp\\([0-9]+\\)$");
    std::vector<std::string> log;
    for (const std::wstring& wide : board.lines()) {
        const std::string line = Narrow(wide);
        EXPECT_TRUE(line.starts_with(prefix)) << line;
        log.push_back(std::regex_replace(line.substr(prefix.size()), line_number, ".cpp(#)"));
    }
    return log;
}

}  // namespace tests
