#pragma once

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace tests {

// Reads cases from a file: the lines of an input, then a line "=> " with the expected result. A
// line that begins with "## " is a comment.
inline std::vector<std::pair<std::string, std::string>> CasesFrom(const std::string& path) {
    std::vector<std::pair<std::string, std::string>> cases;
    std::ifstream file(path);
    std::string input;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("=> "))
            cases.emplace_back(std::exchange(input, {}), line.substr(3));
        else if (!line.starts_with("## "))
            input += line + "\n";
    }
    return cases;
}

}  // namespace tests
