#include "unit/events/word_reader.h"

#include <algorithm>
#include <charconv>

#include "control/words.h"

namespace unit {

void WordReader::Refuse(std::string_view allowed) const {
    // Of a long line the last words are enough to find the place.
    constexpr std::size_t kMaxQuoted = 8;
    const std::size_t from = at_ - std::min(at_, kMaxQuoted);
    std::string after;
    if (at_ > 0)
        after = std::string(" after '") + (from > 0 ? "... " : "") +
                control::JoinWords({words_.begin() + from, words_.begin() + at_}) + "'";
    const std::string what =
        AtEnd() ? "something is missing" : "'" + words_[at_] + "' is not allowed";
    throw WrongWord(what + after + "; allowed is " + std::string(allowed));
}

void WordReader::Finish() const {
    if (!AtEnd())
        Refuse("nothing more");
}

bool WordReader::Has(std::string_view word) {
    const bool has = !AtEnd() && words_[at_] == word;
    at_ += has ? 1 : 0;
    return has;
}

void WordReader::Expect(std::string_view word) {
    if (!Has(word))
        Refuse(word);
}

std::size_t WordReader::OneOf(std::span<const std::string_view> words) {
    for (std::size_t index = 0; index < words.size(); ++index)
        if (Has(words[index]))
            return index;
    std::string list;
    for (std::size_t index = 0; index < words.size(); ++index)
        list += std::string(index == 0                  ? ""
                            : index + 1 == words.size() ? " or "
                                                        : ", ") +
                std::string(words[index]);
    Refuse(list);
}

const std::string& WordReader::Text(std::string_view allowed) {
    if (AtEnd())
        Refuse(allowed);
    return words_[at_++];
}

std::int64_t WordReader::Number(std::int64_t min, std::int64_t max) {
    const auto number = AtEnd() ? std::nullopt : control::ReadNumber(words_[at_]);
    if (!number || *number < min || *number > max)
        Refuse("a whole number from " + std::to_string(min) + " to " + std::to_string(max));
    ++at_;
    return *number;
}

namespace {

// All of the word, with that many digits.
template <class Value>
bool ReadHexadecimal(std::string_view word, std::size_t digits, Value& value) {
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, value, 16);
    return word.size() == digits && error == std::errc() && rest == end;
}

}  // namespace

std::uint8_t WordReader::HexadecimalByte(std::string_view allowed) {
    std::uint8_t value = 0;
    if (AtEnd() || !ReadHexadecimal(Next(), 2, value))
        Refuse(allowed);
    ++at_;
    return value;
}

std::uint64_t WordReader::Hexadecimal64() {
    std::uint64_t value = 0;
    if (AtEnd() || !ReadHexadecimal(Next(), 16, value))
        Refuse("16 hexadecimal digits");
    ++at_;
    return value;
}

}  // namespace unit
