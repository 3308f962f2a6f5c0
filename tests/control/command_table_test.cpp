#include <gtest/gtest.h>

#include "control/command_table.h"

namespace control {
namespace {

using namespace std::chrono_literals;
using Words = std::vector<std::string>;

TEST(Words, JoinReversesSplit) {
    const std::pair<const char*, std::optional<Words>> cases[] = {
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
    for (const auto& [line, expected] : cases) {
        std::string problem;
        const auto words = SplitWords(line, problem);
        EXPECT_EQ(words, expected) << line;
        EXPECT_EQ(problem.empty(), words.has_value()) << line;
        EXPECT_EQ(SplitWords(JoinWords(words.value_or(Words{})), problem), words.value_or(Words{}));
    }
}

// A handler that returns what it was given.
Outcome Describe(std::string& target, const Values& values) {
    target = values.Chose("in") ? "in:" + values.Text("FOLDER") : "";
    target += values.Chose("off") ? "off" : "";
    target += values.Has("SKIP") ? "skip" + std::to_string(values.Number("SKIP")) : "";
    target += values.Has("COUNT") ? "times" + std::to_string(values.Number("COUNT")) : "";
    target += values.Has("DURATION") ? std::to_string(values.Duration("DURATION").count()) : "";
    target += std::string(values.Bytes("BYTES").size(), '*');
    target += values.Text("TEXT");
    return Done(target);
}

std::string NotAllowed(const std::string& word, const std::string& after, const char* allowed) {
    return "'" + word + "' is not allowed after '" + after + "'; allowed is " + allowed;
}

TEST(CommandTable, ExecutesOrReportsWhatIsAllowed) {
    const CommandTable<std::string> table(
        {{"card in [FOLDER]", "", Describe},
         {"card out", "", Describe},
         {"power on|off", "", Describe},
         {"fault call CALL [after SKIP] [times COUNT]", "", Describe},
         {"sleep DURATION", "", Describe},
         {"send BYTES", "", Describe},
         {"mark [SKIP] COUNT", "", Describe},
         {"say TEXT...", "", Describe}});
    const std::pair<const char*, const char*> done[] = {
        {"card in", "in:"},
        {"card in \"my folder\"", "in:/home/my folder"},
        {"power off", "off"},
        {"fault call CloseHandle", ""},
        {"fault call CloseHandle times 0x10", "times16"},
        {"fault call CloseHandle after 3 times 2", "skip3times2"},
        {"sleep 1.5s", "1500000"},
        {"sleep 2min", "120000000"},
        {"send \"A5 5a\"", "**"},
        {"mark 5", "times5"},
        {"mark 5 6", "skip5times6"},
        {"card in /absolute", "in:/absolute"},
        {"card in relative", "in:/home/relative"},
        {"say it 'loud and' clear", "it \"loud and\" clear"},
        {"  # nothing", ""},
    };
    constexpr char kDuration[] = "DURATION (a number with ms, s or min, such as 500ms)";
    const std::pair<const char*, std::string> refused[] = {
        {"crad in",
         "'crad' is not allowed; allowed is card, power, fault, sleep, send, mark or say"},
        {"card", "something is missing after 'card'; allowed is in or out"},
        {"card up", NotAllowed("up", "card", "in or out")},
        {"card out now", "'now' is not expected after 'card out'"},
        {"power", "something is missing after 'power'; allowed is on or off"},
        {"fault call X after no",
         NotAllowed("no", "fault call X after", "SKIP (a whole number from 0 to 1000000000)")},
        {"fault call X times 2 after 3", "'after' is not expected after 'fault call X times 2'"},
        {"sleep 5", NotAllowed("5", "sleep", kDuration)},
        {"sleep -5s", NotAllowed("-5s", "sleep", kDuration)},
        {"send A5F",
         NotAllowed("A5F", "send", "BYTES (pairs of hexadecimal digits, such as A55A)")},
        {"say \"open", "a quote \" is not closed"},
    };
    const auto check = [&table](const char* line, const std::string& text, bool is_done) {
        std::string target;
        const Outcome outcome = table.Execute(target, line, "/home");
        EXPECT_EQ(outcome.done, is_done) << line;
        EXPECT_EQ(outcome.text, text) << line;
    };
    for (const auto& [line, text] : done)
        check(line, text, true);
    for (const auto& [line, text] : refused)
        check(line, text, false);
}

TEST(Grammar, RefusesMalformedPatterns) {
    for (const std::string_view pattern : {"a [b", "a b]", "a WRONG", "[a [b] c"})
        EXPECT_THROW(Grammar({&pattern, 1}), std::logic_error) << pattern;
}

}  // namespace
}  // namespace control
