#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace unit {

// A line that cannot be read: what is wrong, in one line.
class WrongWord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Reads the words of a line one by one. A word that is not allowed throws WrongWord, with what is
// allowed in its place.
class WordReader {
  public:
    explicit WordReader(std::span<const std::string> words) : words_(words) {}

    bool AtEnd() const { return at_ == words_.size(); }
    std::size_t left() const { return words_.size() - at_; }
    // Throws unless all words have been read.
    void Finish() const;

    // The next word, which must exist; it is not consumed.
    const std::string& Next() const { return words_[at_]; }
    // Consumes the next word if it is this one.
    bool Has(std::string_view word);
    void Expect(std::string_view word);
    // Consumes one of these words; returns its index.
    std::size_t OneOf(std::span<const std::string_view> words);

    // Any word.
    const std::string& Text(std::string_view allowed);
    // Decimal, or hexadecimal after 0x.
    std::int64_t Number(std::int64_t min, std::int64_t max);
    // Two digits.
    std::uint8_t HexadecimalByte(std::string_view allowed);
    // 16 digits.
    std::uint64_t Hexadecimal64();

    // The rest of the line, for a reader of its own.
    WordReader Rest() const { return WordReader(words_.subspan(at_)); }

    [[noreturn]] void Refuse(std::string_view allowed) const;

  private:
    std::span<const std::string> words_;
    std::size_t at_ = 0;
};

}  // namespace unit
