#include "control/words.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace control {
namespace {

constexpr std::string_view kSpaces = " \t\r";

// Appends the quoted text at `at` (the opening quote) to `word` and moves `at` behind the closing
// quote. Returns false if there is none.
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

bool IsAnything(std::string_view) {
    return true;
}
bool IsNotEmpty(std::string_view word) {
    return !word.empty();
}
bool IsDuration(std::string_view word) {
    return ReadDuration(word).has_value();
}
bool IsNumber(std::string_view word) {
    return ReadNumber(word).has_value();
}
template <std::int64_t kLeast, std::int64_t kMost>
bool IsWithin(std::string_view word) {
    const auto number = ReadNumber(word);
    return number && *number >= kLeast && *number <= kMost;
}
bool IsOdds(std::string_view word) {
    const auto percent = ReadDecimal(word);
    return percent && *percent > 0 && *percent <= 100;
}
bool IsBytes(std::string_view word) {
    const auto bytes = ReadBytes(word);
    return bytes && !bytes->empty();
}
bool IsDeviceName(std::string_view word) {
    return word.size() >= 2 && word.back() == ':';
}

bool IsSpeed(std::string_view word) {
    const auto speed = ReadDecimal(word);
    return speed && *speed >= 0.1 && *speed <= 1000;
}

constexpr std::int64_t kMostCount = 1'000'000'000;
constexpr char kCountAllowed[] = "a whole number from 1 to 1000000000";
constexpr char kDurationAllowed[] = "a number with ms, s or min, such as 500ms";
constexpr char kPercentAllowed[] = "a whole number from 0 to 100";
constexpr char kByteAllowed[] = "a number from 0 to 255, such as 17 or 0x11";

constexpr Placeholder kPlaceholders[] = {
    {"TEXT", "a text, in quotes if it contains spaces", IsAnything},
    {"NAME", "a name", IsNotEmpty},
    {"FILE", "the path of a file", IsNotEmpty},
    {"FOLDER", "the path of a folder", IsNotEmpty},
    {"COMMAND", "a command line of the host", IsNotEmpty},
    {"BUTTON", "the caption of a button, or close", IsNotEmpty},
    {"DRIVER", "the name of a stream driver, such as SCA0:", IsDeviceName},
    {"VERSION", "a version text, such as 14.09.01.V1.02.03", IsNotEmpty},
    {"CALL", "the name of a platform call, such as CreateFileW", IsNotEmpty},
    {"CODE", "a number, such as 0x2E", IsNumber},
    {"ERROR", "a number, such as 55", IsWithin<1, 0xFFFFFFFF>},
    {"X", "a whole number from 0 to 799", IsWithin<0, 799>},
    {"Y", "a whole number from 0 to 479", IsWithin<0, 479>},
    {"STEP", "a whole number from -1 to 6", IsWithin<-1, 6>},
    {"SEED", "a whole number from 0 to 4294967295", IsWithin<0, 0xFFFFFFFF>},
    {"SPEED", "a number from 0.1 to 1000", IsSpeed},
    {"STATUS", "a number, such as 1", IsNumber},
    {"WPARAM", "a number, such as 0", IsNumber},
    {"LPARAM", "a number, such as 2", IsNumber},
    {"PERCENT", kPercentAllowed, IsWithin<0, 100>},
    {"TO-PERCENT", kPercentAllowed, IsWithin<0, 100>},
    {"CHANCE", "a whole number from 1 to 100, in percent", IsWithin<1, 100>},
    {"ODDS", "a number of percent above 0 and up to 100, such as 0.5", IsOdds},
    {"BYTE", kByteAllowed, IsWithin<0, 255>},
    {"INDEX", "a whole number from 0 to 63", IsWithin<0, 63>},
    {"BYTES", "pairs of hexadecimal digits, such as A55A", IsBytes},
    {"DURATION", kDurationAllowed, IsDuration},
    {"LIMIT", kDurationAllowed, IsDuration},
    {"COUNT", kCountAllowed, IsWithin<1, kMostCount>},
    {"NUMBER", kCountAllowed, IsWithin<1, kMostCount>},
    {"SKIP", "a whole number from 0 to 1000000000", IsWithin<0, kMostCount>},
    {"FACTOR", "a whole number from 1 to 100", IsWithin<1, 100>},
};

struct Unit {
    std::string_view name;
    double microseconds;
};
constexpr Unit kUnits[] = {{"ms", 1e3}, {"s", 1e6}, {"min", 60e6}};
constexpr double kLongest = 1e15;

int HexDigit(char character) {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    const std::size_t at = kDigits.find(character);
    if (at == std::string_view::npos)
        return -1;
    return static_cast<int>(at < 16 ? at : at - 6);
}

// The smallest number of bytes to add, remove, replace or swap with the next one that turns one
// word into the other; the case of letters does not count.
std::size_t ChangesBetween(std::string_view one, std::string_view other) {
    const auto same = [&](std::size_t at, std::size_t of_other) {
        return std::tolower(static_cast<unsigned char>(one[at])) ==
               std::tolower(static_cast<unsigned char>(other[of_other]));
    };
    // Row `at` has the changes from the first `at` bytes of `one` to each beginning of `other`.
    std::vector<std::vector<std::size_t>> rows(one.size() + 1,
                                               std::vector<std::size_t>(other.size() + 1));
    for (std::size_t at = 0; at <= one.size(); ++at) {
        for (std::size_t to = 0; to <= other.size(); ++to) {
            std::size_t& changes = rows[at][to];
            changes = at == 0 ? to : to == 0 ? at : rows[at - 1][to - 1] + !same(at - 1, to - 1);
            if (at > 0)
                changes = std::min(changes, rows[at - 1][to] + 1);
            if (to > 0)
                changes = std::min(changes, rows[at][to - 1] + 1);
            if (at > 1 && to > 1 && same(at - 1, to - 2) && same(at - 2, to - 1))
                changes = std::min(changes, rows[at - 2][to - 2] + 1);
        }
    }
    return rows[one.size()][other.size()];
}

}  // namespace

std::optional<std::vector<std::string>> SplitWords(std::string_view line, std::string& problem) {
    std::vector<std::string> words;
    std::size_t at = 0;
    for (;;) {
        at = line.find_first_not_of(kSpaces, at);
        if (at == std::string_view::npos || line[at] == '#')
            return words;
        std::string word;
        while (at < line.size() && kSpaces.find(line[at]) == std::string_view::npos) {
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

std::string ListText(const std::vector<std::string_view>& words) {
    std::string text;
    for (std::size_t place = 0; place < words.size(); ++place) {
        if (place > 0)
            text += place + 1 == words.size() ? " and " : ", ";
        text += words[place];
    }
    return text;
}

std::string_view ClosestWord(std::string_view word,
                             const std::vector<std::string_view>& candidates) {
    std::string_view closest;
    // Short words differ from each other by less than a typing error.
    std::size_t least = std::min<std::size_t>(word.size() / 3, 2) + 1;
    for (const std::string_view candidate : candidates) {
        // Each byte more is a change. A word can be as long as a whole file: it is not compared.
        const auto [shorter, longer] = std::minmax({word.size(), candidate.size()});
        if (longer - shorter >= least)
            continue;
        const std::size_t changes = ChangesBetween(word, candidate);
        if (changes > 0 && changes < least) {
            least = changes;
            closest = candidate;
        }
    }
    return closest;
}

std::string Suggestion(std::string_view word, const std::vector<std::string_view>& candidates) {
    const std::string_view closest = ClosestWord(word, candidates);
    return closest.empty() ? "" : "; did you mean " + QuoteWord(closest) + "?";
}

std::string OneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

const Placeholder* FindPlaceholder(std::string_view name) {
    const auto found = std::ranges::find(kPlaceholders, name, &Placeholder::name);
    return found == std::end(kPlaceholders) ? nullptr : found;
}

std::optional<std::chrono::microseconds> ReadDuration(std::string_view word) {
    double number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || !(number >= 0))
        return std::nullopt;
    const std::string_view unit_name(end, word.data() + word.size() - end);
    const auto unit = std::ranges::find(kUnits, unit_name, &Unit::name);
    if (unit == std::end(kUnits) || number * unit->microseconds > kLongest)
        return std::nullopt;
    return std::chrono::microseconds(std::llround(number * unit->microseconds));
}

std::string DurationWord(std::chrono::microseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10gms", static_cast<double>(time.count()) / 1000);
    return text;
}

std::optional<std::int64_t> ReadNumber(std::string_view word) {
    const bool hexadecimal = word.starts_with("0x") || word.starts_with("0X");
    if (hexadecimal)
        word.remove_prefix(2);
    std::int64_t number = 0;
    const char* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, number, hexadecimal ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end || (hexadecimal && number < 0))
        return std::nullopt;
    return number;
}

std::optional<double> ReadDecimal(std::string_view word) {
    double number = 0;
    const char* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

std::optional<std::vector<std::uint8_t>> ReadBytes(std::string_view word) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < word.size();) {
        if (word[at] == ' ') {
            ++at;
            continue;
        }
        const int high = HexDigit(word[at]);
        const int low = at + 1 < word.size() ? HexDigit(word[at + 1]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
        at += 2;
    }
    return bytes;
}

void Values::ResolvePaths(const std::string& folder) {
    for (auto& [name, value] : values_)
        if ((name == "FILE" || name == "FOLDER") && !value.starts_with('/'))
            value.insert(0, folder + "/");
}

std::string Values::Text(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::string() : found->second;
}

std::int64_t Values::Number(std::string_view name, std::int64_t otherwise) const {
    return ReadNumber(Text(name)).value_or(otherwise);
}

std::chrono::microseconds Values::Duration(std::string_view name,
                                           std::chrono::microseconds otherwise) const {
    return ReadDuration(Text(name)).value_or(otherwise);
}

std::vector<std::uint8_t> Values::Bytes(std::string_view name) const {
    return ReadBytes(Text(name)).value_or(std::vector<std::uint8_t>());
}

}  // namespace control
