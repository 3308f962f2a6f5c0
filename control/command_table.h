#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "control/grammar.h"
#include "control/words.h"

namespace control {

// The result of a command.
struct Outcome {
    bool done;
    std::string text;      // the output of a command that was done, or the problem
    bool misused = false;  // the words are no command, so nothing was tried
    // For a command that ends later: gives its outcome once it has ended. Not waited for where no
    // reply is expected.
    std::function<std::optional<Outcome>()> later = {};
};
inline Outcome Done(std::string text = {}) {
    return {true, std::move(text)};
}
inline Outcome Refused(std::string problem) {
    return {false, std::move(problem)};
}
inline Outcome Misused(std::string problem) {
    return {false, std::move(problem), true};
}

// The commands that a Target can execute. Reading a line needs no target, so a whole file can be
// checked before its first command is executed.
template <class Target>
class CommandTable {
  public:
    struct Row {
        std::string_view pattern;  // see grammar.h; must outlive the table
        std::string_view help;     // a sentence
        std::function<Outcome(Target&, const Values&)> execute;
        // Checks values that fit the pattern beyond what their placeholders check. Returns the
        // problem in one line, or an empty text.
        std::string (*check)(const Values&) = nullptr;
    };

    // A line that was read. It can be executed any number of times.
    struct Command {
        const Row* row;
        Values values;

        Outcome Execute(Target& target) const { return row->execute(target, values); }
    };

    explicit CommandTable(std::vector<Row> rows)
        : rows_(std::move(rows)), grammar_(Patterns(rows_)) {}
    CommandTable(const CommandTable&) = delete;
    CommandTable& operator=(const CommandTable&) = delete;

    std::optional<Command> Read(const std::vector<std::string>& words, std::string& problem) const {
        auto match = grammar_.Read(words, problem);
        if (!match)
            return std::nullopt;
        const Row& row = rows_[match->pattern];
        if (row.check) {
            problem = row.check(match->values);
            if (!problem.empty())
                return std::nullopt;
        }
        return Command{&row, std::move(match->values)};
    }

    // Reads and executes one line; an empty line or a comment does nothing. Relative paths are
    // resolved against `folder` unless it is empty.
    Outcome Execute(Target& target, std::string_view line, const std::string& folder = {}) const {
        std::string problem;
        const auto words = SplitWords(line, problem);
        if (!words)
            return Misused(problem);
        if (words->empty())
            return Done();
        auto command = Read(*words, problem);
        if (command && !folder.empty())
            command->values.ResolvePaths(folder);
        return command ? command->Execute(target) : Misused(problem);
    }

    const std::vector<Row>& rows() const { return rows_; }
    const Grammar& grammar() const { return grammar_; }

  private:
    static Grammar Patterns(const std::vector<Row>& rows) {
        std::vector<std::string_view> patterns;
        patterns.reserve(rows.size());
        for (const Row& row : rows)
            patterns.push_back(row.pattern);
        return Grammar(patterns);
    }

    const std::vector<Row> rows_;
    const Grammar grammar_;
};

}  // namespace control
