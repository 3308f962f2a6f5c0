#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "control/words.h"

namespace control {

// A small command language, defined by patterns such as
//
//     card in [FOLDER]
//     power on|off
//     fault call CALL [after SKIP] [times COUNT]
//
// A word in lower case stands for itself; a word in capitals is a placeholder (words.h). |
// separates alternative words; [ ] encloses an optional part. A trailing ... takes all remaining
// words as one value (TEXT...).
class Grammar {
  public:
    // Throws std::logic_error for a malformed pattern or an unknown placeholder.
    explicit Grammar(std::span<const std::string_view> patterns);

    struct Match {
        std::size_t pattern;
        Values values;
    };

    // Finds the first pattern that matches the words. If none does, returns nothing and puts one
    // line into `problem`: the word that is wrong, and what is allowed in its place.
    std::optional<Match> Read(std::span<const std::string> words, std::string& problem) const;

    // The plain words that can come after these words, for completion.
    std::vector<std::string> NextWords(std::span<const std::string> words) const;

  private:
    struct Token {
        enum class Kind { kWords, kPlaceholder, kRest, kOpen, kClose };
        Kind kind;
        std::vector<std::string> words;  // of kWords
        const Placeholder* placeholder = nullptr;
        std::size_t close = 0;  // of kOpen: the index of its ]
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
