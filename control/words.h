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

// Splits a line into words at blanks. "..." makes one word, with \" and \\ for those characters;
// '...' makes one word of everything inside. A # at the start of a word begins a comment. Empty
// with one line in `problem` when a quote is not closed.
std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& problem);

// The word as SplitWords would read it back: quoted when it must be.
std::string QuoteWord(std::string_view word);
std::string JoinWords(const std::vector<std::string>& words);

// The text in one line, its line ends as blanks and none of those at its end.
std::string OneLine(std::string text);

// What a capital word of a command's pattern stands for.
struct Placeholder {
    std::string_view name;
    std::string_view allowed;  // "a number with ms, s or min, such as 500ms"
    bool (*accepts)(std::string_view word);
};

// Null when there is no placeholder of that name.
const Placeholder* FindPlaceholder(std::string_view name);

// "500ms", "1.5s", "3min", never negative.
std::optional<std::chrono::microseconds> ReadDuration(std::string_view word);
// Decimal, or hexadecimal after 0x; the whole word.
std::optional<std::int64_t> ReadNumber(std::string_view word);
// Decimal, with a point or not; the whole word.
std::optional<double> ReadDecimal(std::string_view word);
// Pairs of hexadecimal digits, with blanks between them or not.
std::optional<std::vector<std::uint8_t>> ReadBytes(std::string_view word);

// What a command line gave: a value per placeholder, and which of its plain words it had. The
// values were checked when the line was read, so reading them cannot fail.
class Values {
  public:
    // True when the line had that plain word ("out" of "card in|out").
    bool Chose(std::string_view word) const { return words_.contains(word); }

    bool Has(std::string_view name) const { return values_.contains(name); }
    // Empty text, 0 or nothing for what the line left out.
    std::string Text(std::string_view name) const;
    std::int64_t Number(std::string_view name, std::int64_t otherwise = 0) const;
    std::chrono::microseconds Duration(std::string_view name,
                                       std::chrono::microseconds otherwise = {}) const;
    std::vector<std::uint8_t> Bytes(std::string_view name) const;

    // Makes relative paths (FILE, FOLDER) start from that folder.
    void ResolvePaths(const std::string& folder);

  private:
    friend class Grammar;

    std::set<std::string, std::less<>> words_;
    std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace control
