#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace control {

// Splits a line into words at spaces and tabs. "..." is one word, in which \" and \\ stand for
// those characters; '...' is one word without escapes. A # at the start of a word begins a comment.
// If a quote is not closed, returns nothing and puts one line into `problem`.
std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& problem);

// The reverse of SplitWords: quotes a word where necessary.
std::string QuoteWord(std::string_view word);
std::string JoinWords(const std::vector<std::string>& words);

// "one, two and three"
std::string ListText(const std::vector<std::string_view>& words);

// The candidate that the word is most likely a misspelling of; empty if none is close.
std::string_view ClosestWord(std::string_view word,
                             const std::vector<std::string_view>& candidates);
// "; did you mean checksum?", or an empty text.
std::string Suggestion(std::string_view word, const std::vector<std::string_view>& candidates);

// Replaces line ends by spaces and removes those at the end.
std::string OneLine(std::string text);

// What a word in capitals in a command's pattern stands for.
struct Placeholder {
    std::string_view name;
    std::string_view allowed;  // "a number with ms, s or min, such as 500ms"
    bool (*accepts)(std::string_view word);
};

// Returns null for an unknown name.
const Placeholder* FindPlaceholder(std::string_view name);

// "500ms", "1.5s", "3min"; not negative.
std::optional<std::chrono::microseconds> ReadDuration(std::string_view word);
// The word that ReadDuration reads as that time, in milliseconds.
std::string DurationWord(std::chrono::microseconds time);
// Reads the whole word: decimal, or hexadecimal after 0x.
std::optional<std::int64_t> ReadNumber(std::string_view word);
// Reads the whole word: decimal, with or without a point.
std::optional<double> ReadDecimal(std::string_view word);
// Pairs of hexadecimal digits, with or without spaces between them.
std::optional<std::vector<std::uint8_t>> ReadBytes(std::string_view word);

// What a line contained: a value for each placeholder, and its plain words. The values were checked
// when the line was read, so access cannot fail.
class Values {
  public:
    // True if the line contained that plain word ("out" of "card in|out").
    bool Chose(std::string_view word) const { return words_.contains(word); }

    bool Has(std::string_view name) const { return values_.contains(name); }
    // For a placeholder that the line left out: an empty text, `otherwise`, or no bytes.
    std::string Text(std::string_view name) const;
    std::int64_t Number(std::string_view name, std::int64_t otherwise = 0) const;
    std::chrono::microseconds Duration(std::string_view name,
                                       std::chrono::microseconds otherwise = {}) const;
    std::vector<std::uint8_t> Bytes(std::string_view name) const;

    // Makes relative paths (FILE, FOLDER) absolute, starting from `folder`.
    void ResolvePaths(const std::string& folder);

  private:
    friend class Grammar;

    std::set<std::string, std::less<>> words_;
    std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace control
