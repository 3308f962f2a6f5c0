#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace control {

// Splits a line into words at blanks. "..." makes one word, with \" and \\ for those characters;
// '...' makes one word of everything inside. A # at the start of a word begins a comment. Empty
// with one line in `problem` when a quote is not closed.
std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& problem);

// The word as SplitWords would read it back: quoted when it must be.
std::string QuoteWord(std::string_view word);
std::string JoinWords(const std::vector<std::string>& words);

// The text in one line, its line ends as blanks and none of those at its end.
std::string OneLine(std::string text);

}  // namespace control
