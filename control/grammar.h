#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "control/words.h"

namespace control {

// A small command language, given by patterns such as
//
//     card in [FOLDER]
//     power on|off
//     fault call CALL [after SKIP] [times COUNT]
//
// A word in small letters stands for itself, one in capitals is a placeholder (values.h); | divides
// plain words to choose from; [ ] encloses what may be left out. A trailing ... takes all words
// that are left, as one value (TEXT...).
class Grammar {
  public:
    // Throws std::logic_error for a pattern that is not well formed or names no placeholder.
    explicit Grammar(std::span<const std::string_view> patterns);

    struct Match {
        std::size_t pattern;
        Values values;
    };

    // Which pattern the words execute; the first one that fits. Empty with one line in `problem`
    // that says which word is wrong and what is allowed in its place.
    std::optional<Match> Read(std::span<const std::string> words, std::string& problem) const;

    // What may follow these words, as far as it is plain words: for completion.
    std::vector<std::string> NextWords(std::span<const std::string> words) const;

  private:
    struct Token {
        enum class Kind { kWords, kPlaceholder, kRest, kOpen, kClose };
        Kind kind;
        std::vector<std::string> words;  // of kWords
        const Placeholder* placeholder = nullptr;
        std::size_t close = 0;  // of kOpen: where its ] is
    };
    using Tokens = std::vector<Token>;
    struct Reading;

    static Tokens Compile(std::string_view pattern);
    static Token CompileWord(std::string_view word, std::string_view pattern);
    static bool MatchTokens(const Tokens& tokens, std::size_t token, std::size_t word,
                            Reading& reading);

    std::vector<Tokens> patterns_;
};

}  // namespace control
