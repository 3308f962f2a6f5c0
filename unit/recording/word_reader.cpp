#include "unit/recording/word_reader.h"

#include <algorithm>
#include <charconv>

#include "control/words.h"

namespace unit {

void WordReader::Refuse(std::string_view allowed) const {
    const std::string after =
        at_ == 0 ? ""
                 : " after '" + control::JoinWords({words_.begin(), words_.begin() + at_}) + "'";
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

std::int64_t WordReader::Number(std::int64_t least, std::int64_t most) {
    const auto number = AtEnd() ? std::nullopt : control::ReadNumber(words_[at_]);
    if (!number || *number < least || *number > most)
        Refuse("a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    ++at_;
    return *number;
}

std::uint64_t WordReader::Hexadecimal64() {
    std::uint64_t value = 0;
    if (AtEnd())
        Refuse("16 hexadecimal digits");
    const std::string& word = words_[at_];
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, value, 16);
    if (word.size() != 16 || error != std::errc() || rest != end)
        Refuse("16 hexadecimal digits");
    ++at_;
    return value;
}

std::span<const std::string> WordReader::Rest() {
    const auto rest = words_.subspan(at_);
    at_ = words_.size();
    return rest;
}

}  // namespace unit
