#include <gtest/gtest.h>

#include "control/command_table.h"

namespace control {
namespace {

using namespace std::chrono_literals;
using Words = std::vector<std::string>;

TEST(Words, SplitAndQuoteAreEachOthersReverse) {
    struct Case {
        const char* line;
        std::optional<Words> words;
    };
    const Case cases[] = {
        {"", Words{}},
        {"  tap \t Next\r", Words{"tap", "Next"}},
        {"# all of it", Words{}},
        {"a#b # c", Words{"a#b"}},
        {R"(text "say \"hi\" \\ \n" 'raw "x" \' "")",
         Words{"text", R"(say "hi" \ \n)", R"(raw "x" \)", ""}},
        {R"(glued" to "gether)", Words{"glued to gether"}},
        {"open \"quote", std::nullopt},
        {"open 'quote", std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::string problem;
        const auto words = SplitWords(c.line, problem);
        EXPECT_EQ(words, c.words);
        EXPECT_EQ(problem.empty(), words.has_value());
        if (words) {
            EXPECT_EQ(SplitWords(JoinWords(*words), problem), words);
        }
    }
}

// Follows commands by writing down what they were.
using Table = CommandTable<std::string>;
Outcome Note(std::string& target, const Values& values) {
    target = values.Chose("in") ? "in:" + values.Text("FOLDER") : "";
    target += values.Chose("off") ? "off" : "";
    target += values.Has("SKIP") ? "skip" + std::to_string(values.Number("SKIP")) : "";
    target += values.Has("COUNT") ? "times" + std::to_string(values.Number("COUNT")) : "";
    target += values.Has("DURATION") ? std::to_string(values.Duration("DURATION").count()) : "";
    target += std::string(values.Bytes("BYTES").size(), '*');
    target += values.Text("TEXT");
    return Done(target);
}
const Table& Commands() {
    static const Table table({{"card in [FOLDER]", "", Note},
                              {"card out", "", Note},
                              {"power on|off", "", Note},
                              {"fault call CALL [after SKIP] [times COUNT]", "", Note},
                              {"sleep DURATION", "", Note},
                              {"send BYTES", "", Note},
                              {"say TEXT...", "", Note}});
    return table;
}

TEST(CommandTable, FollowsAndRefusesWithWhatIsAllowed) {
    struct Case {
        const char* line;
        bool done;
        const char* text;
    };
    const Case cases[] = {
        {"card in", true, "in:"},
        {"card in \"my folder\"", true, "in:my folder"},
        {"power off", true, "off"},
        {"fault call CloseHandle", true, ""},
        {"fault call CloseHandle times 0x10", true, "times16"},
        {"fault call CloseHandle after 3 times 2", true, "skip3times2"},
        {"sleep 1.5s", true, "1500000"},
        {"sleep 2min", true, "120000000"},
        {"send \"A5 5a\"", true, "**"},
        {"say it 'loud and' clear", true, "it \"loud and\" clear"},
        {"  # nothing", true, ""},
        {"crad in", false,
         "'crad' is not allowed; allowed is card, power, fault, sleep, send or say"},
        {"card", false, "something is missing after 'card'; allowed is in or out"},
        {"card up", false, "'up' is not allowed after 'card'; allowed is in or out"},
        {"card out now", false, "'now' is too much after 'card out'"},
        {"power", false, "something is missing after 'power'; allowed is on or off"},
        {"fault call X after no", false,
         "'no' is not allowed after 'fault call X after'; allowed is SKIP (a whole number from 0 "
         "to "
         "1000000000)"},
        {"fault call X times 2 after 3", false, "'after' is too much after 'fault call X times 2'"},
        {"sleep 5", false,
         "'5' is not allowed after 'sleep'; allowed is DURATION (a number with ms, s or min, such "
         "as "
         "500ms)"},
        {"sleep -5s", false,
         "'-5s' is not allowed after 'sleep'; allowed is DURATION (a number with ms, s or min, "
         "such "
         "as 500ms)"},
        {"send A5F", false,
         "'A5F' is not allowed after 'send'; allowed is BYTES (pairs of hexadecimal digits, such "
         "as "
         "A55A)"},
        {"say \"open", false, "a quote \" is not closed"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::string target;
        const Outcome outcome = Commands().Follow(target, c.line);
        EXPECT_EQ(outcome.done, c.done);
        EXPECT_EQ(outcome.text, c.text);
    }
}

TEST(Grammar, PatternsThatAreNotWellFormedAreRefused) {
    for (const std::string_view pattern : {"a [b", "a b]", "a WRONG", "[a [b] c"})
        EXPECT_THROW(Grammar({&pattern, 1}), std::logic_error) << pattern;
}

}  // namespace
}  // namespace control
