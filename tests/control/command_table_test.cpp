#include <gtest/gtest.h>

#include "control/command_table.h"
#include "tests/support/cases.h"

namespace control {
namespace {

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

// A handler that says what it was given.
Outcome Describe(std::string& given, const Values& values) {
    given = values.Chose("in") ? "in:" + values.Text("FOLDER") : "";
    given += values.Chose("off") ? "off" : "";
    given += values.Has("SKIP") ? "skip" + std::to_string(values.Number("SKIP")) : "";
    given += values.Has("COUNT") ? "times" + std::to_string(values.Number("COUNT")) : "";
    given += values.Has("DURATION") ? std::to_string(values.Duration("DURATION").count()) : "";
    given += std::string(values.Bytes("BYTES").size(), '*');
    given += values.Text("TEXT");
    return Done("did " + (given.empty() ? "nothing more" : given));
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
    std::string given;
    const auto cases = tests::CasesFrom(CONTROL_CASES "/commands.txt");
    EXPECT_EQ(cases.size(), 25U);
    for (const auto& [input, text] : cases) {
        const std::string line = input.substr(0, input.find('\n'));
        const Outcome outcome = table.Execute(given, line, "/home");
        EXPECT_EQ(outcome.text, text) << line;
        EXPECT_EQ(outcome.done, text.starts_with("did ")) << line;
    }
    EXPECT_TRUE(table.Execute(given, "  # nothing", "/home").done);
}

TEST(Grammar, RefusesMalformedPatterns) {
    for (const std::string_view pattern : {"a [b", "a b]", "a WRONG", "[a [b] c"})
        EXPECT_THROW(Grammar({&pattern, 1}), std::logic_error) << pattern;
}

}  // namespace
}  // namespace control
