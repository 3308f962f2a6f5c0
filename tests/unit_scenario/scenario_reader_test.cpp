#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/cases.h"
#include "tests/support/process.h"
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
    EXPECT_EQ(cases.size(), 15U);
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

class ScenarioFiles : public Process {};

TEST_F(ScenarioFiles, IncludeFilesFromTheirOwnFoldersButNotThemselves) {
    std::filesystem::create_directory(Path("flows"));
    for (const auto& [name, text] :
         {std::pair("main.scenario", "seed 7\ninclude flows/begin.scenario\nwait 3s\n"),
          {"flows/begin.scenario",
           "repeat 2\nwait 1s\ninclude end.scenario\nend\nexpect graphics x.png\n"},
          {"flows/end.scenario", "\nwait 2s"},
          {"circle.scenario", "include flows/../circle.scenario\n"},
          {"open.scenario", "repeat 2\n"},
          {"leaves-open.scenario", "include open.scenario\nwait 1s\n"}})
        std::ofstream(Path(name)) << text;
    for (int depth = 0; depth < 40; ++depth) {
        const std::string next = "include " + std::to_string(depth + 1) + "\n";
        std::ofstream(Path(std::to_string(depth))) << next << next;
    }
    std::ofstream(Path("40")) << "#" + std::string(20'000, '.') + "\n";

    Problems problems;
    const auto scenario = LoadScenario(Path("main.scenario"), problems);
    ASSERT_TRUE(scenario) << problems.front();
    EXPECT_EQ(scenario->name, "main");
    EXPECT_EQ(scenario->settings.seed, 7U);
    std::string steps;
    for (const Step& step : scenario->steps)
        steps += step.Place().substr(Path("").size()) + " " + step.text + "\n";
    EXPECT_EQ(steps,
              "flows/begin.scenario:2 wait 1s\nflows/end.scenario:2 wait 2s\n"
              "flows/begin.scenario:2 wait 1s\nflows/end.scenario:2 wait 2s\n"
              "flows/begin.scenario:5 expect graphics x.png\nmain.scenario:3 wait 3s\n");

    for (const auto& [name, end] : {std::pair("circle.scenario", "circle.scenario includes itself"),
                                    {"leaves-open.scenario", "open.scenario has no end there"},
                                    {"0", "including all included files"}}) {
        EXPECT_FALSE(LoadScenario(Path(name), problems));
        EXPECT_TRUE(problems.back().ends_with(end)) << problems.back();
    }
}

}  // namespace
}  // namespace tests
