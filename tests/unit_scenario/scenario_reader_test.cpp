#include <gtest/gtest.h>

#include "tests/support/cases.h"
#include "unit/scenario/scenario.h"

namespace tests {
namespace {

using namespace unit;

using Problems = std::vector<std::string>;

Problems ProblemsOf(const std::string& text) {
    Problems problems;
    const bool read = ReadScenario(text, "a.scenario", problems).has_value();
    EXPECT_EQ(read, problems.empty());
    return problems;
}

std::string Repeated(std::size_t count, const std::string& text) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

TEST(ReadScenario, RefusesAWrongLineWithItsPlaceAndWhatIsAllowed) {
    auto cases = CasesFrom(SCENARIO_CASES "/refused-scenarios.txt");
    EXPECT_EQ(cases.size(), 31U);
    const std::string too_long =
        " too long; at most 1048576 bytes are allowed, including all included files";
    cases.insert(cases.end(), {{"\r\nsay \x1B[2J", "2: the line is not plain UTF-8 text"},
                               {"  \t\nsay \xC3", "2: the line is not plain UTF-8 text"},
                               // Input without end.
                               {"include /dev/zero", "1:" + too_long},
                               {std::string(1024 * 1024 + 1, '\n'), too_long}});
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(ProblemsOf(text), Problems{"a.scenario:" + problem}) << text.substr(0, 200);
    // Repetitions of nothing take no time.
    EXPECT_EQ(ProblemsOf("repeat 1000000000\nrepeat 1000000000\nend\nend\n"), Problems());
    EXPECT_EQ(ProblemsOf(Repeated(8000, "repeat 1\n") + Repeated(8000, "release\n") +
                         Repeated(8000, "end\n")),
              Problems());
    EXPECT_EQ(ProblemsOf("tapp\nwait 1s\nwait 1h").size(), 2U);
    EXPECT_LE(ProblemsOf(Repeated(1000, "repeat 2\n")).size(), 101U);
    const Problems many = ProblemsOf(Repeated(1000, "tapp\n"));
    EXPECT_EQ(many.size(), 101U);
    EXPECT_EQ(many.back(), "a.scenario:101: more than 100 problems; the rest is not reported");
}

}  // namespace
}  // namespace tests
