#include "control/grammar.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <stdexcept>

#include "control/words.h"

namespace control {

// The state of one match of words against patterns.
struct Grammar::Reading {
    std::span<const std::string> words;
    Values values{};
    // The first word that no pattern accepts.
    std::size_t furthest = 0;
    // The tokens that were expected in the place of each word.
    std::map<std::size_t, std::vector<const Token*>> expected{};

    void Reach(std::size_t word) { furthest = std::max(furthest, word); }
    void Expect(std::size_t word, const Token& token) {
        Reach(word);
        expected[word].push_back(&token);
    }

    // The plain words that were expected in the place of that word.
    std::vector<std::string_view> PlainWords(std::size_t word) const {
        std::vector<std::string_view> plain;
        if (const auto tokens = expected.find(word); tokens != expected.end())
            for (const Token* token : tokens->second)
                plain.insert(plain.end(), token->words.begin(), token->words.end());
        return plain;
    }
    // An earlier word that a placeholder accepted can be a misspelt plain word.
    std::size_t WrongWord() const {
        for (std::size_t word = 0; word < std::min(furthest, words.size()); ++word) {
            const auto plain = PlainWords(word);
            if (std::ranges::find(plain, words[word]) == plain.end() &&
                !ClosestWord(words[word], plain).empty())
                return word;
        }
        return furthest;
    }
};

namespace {

std::string Listed(const std::vector<std::string>& words) {
    std::string text;
    for (std::size_t index = 0; index < words.size(); ++index) {
        if (index > 0)
            text += index + 1 == words.size() ? " or " : ", ";
        text += words[index];
    }
    return text;
}

std::vector<std::string> Unique(std::vector<std::string> words) {
    std::vector<std::string> unique;
    for (std::string& word : words)
        if (std::ranges::find(unique, word) == unique.end())
            unique.push_back(std::move(word));
    return unique;
}

std::vector<std::string> Split(std::string_view text, char divider) {
    std::vector<std::string> parts;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t to = std::min(text.find(divider, from), text.size());
        if (to > from)
            parts.emplace_back(text.substr(from, to - from));
        from = to + 1;
    }
    return parts;
}

}  // namespace

Grammar::Grammar(std::span<const std::string_view> patterns) {
    for (const std::string_view pattern : patterns)
        patterns_.push_back(Compile(pattern));
}

Grammar::Token Grammar::CompileWord(std::string_view word, std::string_view pattern) {
    if (std::isupper(static_cast<unsigned char>(word.front())) == 0)
        return {Token::Kind::kWords, Split(word, '|')};
    const bool rest = word.ends_with("...");
    if (rest)
        word.remove_suffix(3);
    const Placeholder* const placeholder = FindPlaceholder(word);
    if (!placeholder)
        throw std::logic_error("no placeholder " + std::string(word) + " in the pattern " +
                               std::string(pattern));
    return {rest ? Token::Kind::kRest : Token::Kind::kPlaceholder, {}, placeholder};
}

Grammar::Tokens Grammar::Compile(std::string_view pattern) {
    Tokens tokens;
    std::vector<std::size_t> open;
    for (std::string_view rest_of_word : Split(pattern, ' ')) {
        while (rest_of_word.starts_with('[')) {
            open.push_back(tokens.size());
            tokens.push_back({Token::Kind::kOpen, {}});
            rest_of_word.remove_prefix(1);
        }
        const std::size_t end = std::min(rest_of_word.find(']'), rest_of_word.size());
        tokens.push_back(CompileWord(rest_of_word.substr(0, end), pattern));
        for (std::size_t at = end; at < rest_of_word.size(); ++at) {
            if (open.empty() || rest_of_word[at] != ']')
                throw std::logic_error("unmatched ] in the pattern " + std::string(pattern));
            tokens[open.back()].close = tokens.size();
            open.pop_back();
            tokens.push_back({Token::Kind::kClose, {}});
        }
    }
    if (!open.empty())
        throw std::logic_error("unmatched [ in the pattern " + std::string(pattern));
    return tokens;
}

bool Grammar::MatchTokens(const Tokens& tokens, std::size_t token, std::size_t word,
                          Reading& reading) {
    if (token == tokens.size()) {
        reading.Reach(word);
        return word == reading.words.size();
    }
    const Token& wanted = tokens[token];
    if (wanted.kind == Token::Kind::kClose)
        return MatchTokens(tokens, token + 1, word, reading);
    if (wanted.kind == Token::Kind::kOpen) {
        const Values before = reading.values;
        if (MatchTokens(tokens, token + 1, word, reading))
            return true;
        reading.values = before;
        return MatchTokens(tokens, wanted.close + 1, word, reading);
    }
    reading.Expect(word, wanted);
    if (word == reading.words.size())
        return false;
    const std::string& given = reading.words[word];
    if (wanted.kind == Token::Kind::kWords) {
        if (std::ranges::find(wanted.words, given) == wanted.words.end())
            return false;
        reading.values.words_.insert(given);
        return MatchTokens(tokens, token + 1, word + 1, reading);
    }
    if (wanted.kind == Token::Kind::kRest) {
        const auto rest = reading.words.subspan(word);
        reading.values.values_[std::string(wanted.placeholder->name)] =
            JoinWords({rest.begin(), rest.end()});
        return true;
    }
    if (!wanted.placeholder->accepts(given))
        return false;
    reading.values.values_[std::string(wanted.placeholder->name)] = given;
    return MatchTokens(tokens, token + 1, word + 1, reading);
}

std::optional<Grammar::Match> Grammar::Read(std::span<const std::string> words,
                                            std::string& problem) const {
    Reading reading{words};
    for (std::size_t pattern = 0; pattern < patterns_.size(); ++pattern) {
        reading.values = {};
        if (MatchTokens(patterns_[pattern], 0, 0, reading))
            return Match{pattern, std::move(reading.values)};
    }
    const std::size_t wrong = std::min(reading.WrongWord(), words.size());
    const std::vector<std::string> read(words.begin(),
                                        words.begin() + static_cast<std::ptrdiff_t>(wrong));
    std::vector<std::string> allowed;
    for (const Token* token : reading.expected[wrong]) {
        if (token->kind == Token::Kind::kWords)
            allowed.insert(allowed.end(), token->words.begin(), token->words.end());
        else
            allowed.push_back(std::string(token->placeholder->name) + " (" +
                              std::string(token->placeholder->allowed) + ")");
    }
    const std::string after = read.empty() ? "" : " after '" + JoinWords(read) + "'";
    const std::string list = Listed(Unique(std::move(allowed)));
    if (wrong == words.size())
        problem = "something is missing" + after + "; allowed is " + list;
    else if (list.empty())
        problem = "'" + words[wrong] + "' is not expected" + after;
    else
        problem = "'" + words[wrong] + "' is not allowed" + after + "; allowed is " + list +
                  Suggestion(words[wrong], reading.PlainWords(wrong));
    return std::nullopt;
}

std::vector<std::string> Grammar::NextWords(std::span<const std::string> words) const {
    std::vector<std::string> next;
    for (const Tokens& tokens : patterns_) {
        Reading reading{words};
        MatchTokens(tokens, 0, 0, reading);
        if (reading.furthest == words.size())
            for (const std::string_view word : reading.PlainWords(words.size()))
                next.emplace_back(word);
    }
    return Unique(std::move(next));
}

}  // namespace control
