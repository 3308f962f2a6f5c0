#include "control/words.h"

#include <algorithm>

namespace control {
namespace {

constexpr std::string_view kBlanks = " \t\r";

// Takes a quoted part from `line` at `at`, which stands on the opening quote; leaves `at` behind
// the closing one. False when there is none.
bool TakeQuoted(std::string_view line, std::size_t& at, std::string& word) {
    const char quote = line[at++];
    for (; at < line.size(); ++at) {
        if (line[at] == quote) {
            ++at;
            return true;
        }
        const bool escapes = quote == '"' && line[at] == '\\' && at + 1 < line.size() &&
                             (line[at + 1] == '"' || line[at + 1] == '\\');
        if (escapes)
            ++at;
        word += line[at];
    }
    return false;
}

}  // namespace

std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& problem) {
    std::vector<std::string> words;
    std::size_t at = 0;
    for (;;) {
        at = line.find_first_not_of(kBlanks, at);
        if (at == std::string_view::npos || line[at] == '#')
            return words;
        std::string word;
        while (at < line.size() && kBlanks.find(line[at]) == std::string_view::npos) {
            if (line[at] != '"' && line[at] != '\'') {
                word += line[at++];
            } else if (const char quote = line[at]; !TakeQuoted(line, at, word)) {
                problem = std::string("a quote ") + quote + " is not closed";
                return std::nullopt;
            }
        }
        words.push_back(std::move(word));
    }
}

std::string QuoteWord(std::string_view word) {
    if (!word.empty() && word.find_first_of(" \t\r\"'#\\") == std::string_view::npos)
        return std::string(word);
    std::string quoted = "\"";
    for (const char character : word) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + '"';
}

std::string JoinWords(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + QuoteWord(word);
    return line;
}

std::string OneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace control
