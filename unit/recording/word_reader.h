#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace unit {

// What is wrong with a line of a recording, in one line.
class WrongWord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Takes the words of a line one after the other; throws WrongWord for one that is not as asked for,
// with what is allowed in its place.
class WordReader {
  public:
    explicit WordReader(std::span<const std::string> words) : words_(words) {}

    bool AtEnd() const { return at_ == words_.size(); }
    // Nothing may follow.
    void Finish() const;

    // Takes the next word when it is this one.
    bool Has(std::string_view word);
    void Expect(std::string_view word);
    // One of these; its index.
    std::size_t OneOf(std::span<const std::string_view> words);

    // Any word.
    const std::string& Text(std::string_view allowed);
    // Decimal, or hexadecimal after 0x.
    std::int64_t Number(std::int64_t least, std::int64_t most);
    std::uint64_t Hexadecimal64();
    // All that are left.
    std::span<const std::string> Rest();

    [[noreturn]] void Refuse(std::string_view allowed) const;

  private:
    std::span<const std::string> words_;
    std::size_t at_ = 0;
};

}  // namespace unit
