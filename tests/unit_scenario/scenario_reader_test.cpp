#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/process.h"
#include "unit/scenario/scenario.h"

namespace tests {
namespace {

using namespace unit;

std::vector<std::string> ProblemsOf(const std::string& text) {
    std::vector<std::string> problems;
    const bool read = ReadScenario(text, "a.scenario", problems).has_value();
    EXPECT_EQ(read, problems.empty());
    return problems;
}

TEST(ReadScenario, RefusesAWrongLineWithPlaceAndWhatIsAllowed) {
    const std::pair<const char*, const char*> cases[] = {
        {"wait 1s\nrepeat 2 times", "2: 'times' is too much after 'repeat 2'"},
        {"# fine\n\n  \t\nwait text 'OK' within 5",
         "4: '5' is not allowed after 'wait text OK within'; allowed is LIMIT (a number "
         "with ms, s or min, such as 500ms)"},
        {"wait no log fail",
         "1: 'log' is not allowed after 'wait no'; allowed is step, "
         "text, button, percent, video, suspended, program or firmware"},
        {"tap \"Power On", "1: a quote \" is not closed"},
        {"wait 1s\nseed 3",
         "2: 'seed 3' holds from the start and must stand before the first other command"},
        {"time free-running speed 2000",
         "1: '2000' is not allowed after 'time free-running speed'; allowed is SPEED (a "
         "number from 0.1 to 1000)"},
        {"wait frame FW_Upgrade to-unit",
         "1: 'FW_Upgrade' is no command of the DVR; allowed is a name such as "
         "FW_Upgrade_Version, or a number such as 0x2E"},
        {"fault line drop Nonsense frames",
         "1: 'Nonsense' is no command of the DVR; allowed is a name such as "
         "FW_Upgrade_Version, or a number such as 0x2E"},
        {"end", "1: there is no repeat to end"},
        {"repeat 2\nwait 1s", "1: this repeat has no end"},
        {"repeat 1000\nrepeat 1000\nwait 1s\nend\nend",
         "5: the repetitions make more than 100000 commands"},
        {"include /no/such/file", "1: /no/such/file: cannot be read: No such file or directory"},
        {"include /", "1: /: cannot be read: Is a directory"},
        {"\r\nsay \x1B[2J", "2: the line is not plain UTF-8 text"},
        {"say \xC3", "1: the line is not plain UTF-8 text"},
        {"include /dev/zero",
         "1: too long; at most 1048576 bytes are allowed, with all that is included"},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(ProblemsOf(text), std::vector<std::string>{std::string("a.scenario:") + problem})
            << text;
    EXPECT_EQ(ProblemsOf("tapp\nwait 1s\nwait 1h").size(), 2U);
}

std::string Repeated(std::size_t count, const std::string& text) {
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

TEST(ReadScenario, KeepsItsLimitsUnderEndlessInput) {
    // Takes no time, however often.
    EXPECT_EQ(ProblemsOf("repeat 1000000000\nrepeat 1000000000\nend\nend\n").size(), 0U);
    EXPECT_EQ(ProblemsOf(Repeated(8000, "repeat 1\n") + Repeated(8000, "release\n") +
                         Repeated(8000, "end\n"))
                  .size(),
              0U);
    const std::pair<std::string, std::string> cases[] = {
        {std::string(1024 * 1024 + 1, '\n'),
         "a.scenario: too long; at most 1048576 bytes are allowed, with all that is included"},
        {"repeat 100000\nrelease\nend\nrelease",
         "a.scenario:4: there are more than 100000 commands"},
        {"release\nrepeat 100000\nrelease\nend\n",
         "a.scenario:4: the repetitions make more than 100000 commands"},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(ProblemsOf(text), std::vector<std::string>{problem});
    for (const char* line : {"tapp\n", "repeat 2\n"}) {
        const std::vector<std::string> problems = ProblemsOf(Repeated(1000, line));
        EXPECT_LE(problems.size(), 101U) << line;
        EXPECT_GE(problems.size(), 100U) << line;
    }
    EXPECT_EQ(ProblemsOf(Repeated(1000, "tapp\n")).back(),
              "a.scenario:101: no more is told than 100 problems");
}

class ScenarioFiles : public Process {};

TEST_F(ScenarioFiles, AreTakenInFromTheirOwnFoldersButNeverInACircle) {
    std::filesystem::create_directory(Path("road"));
    for (const auto& [name, text] :
         {std::pair("main.scenario", "seed 7\ninclude road/begin.scenario\nwait 3s\n"),
          {"road/begin.scenario",
           "repeat 2\nwait 1s\ninclude end.scenario\nend\nexpect graphics x.png\n"},
          {"road/end.scenario", "\nwait 2s"},
          {"circle.scenario", "include road/../circle.scenario\n"},
          {"open.scenario", "repeat 2\n"},
          {"leaves-open.scenario", "include open.scenario\nwait 1s\n"}})
        std::ofstream(Path(name)) << text;
    for (int depth = 0; depth < 40; ++depth) {
        const std::string next = "include " + std::to_string(depth + 1) + "\n";
        std::ofstream(Path(std::to_string(depth))) << next << next;
    }
    std::ofstream(Path("40")) << "#" + std::string(20'000, '.') + "\n";

    std::vector<std::string> problems;
    const auto scenario = LoadScenario(Path("main.scenario"), problems);
    ASSERT_TRUE(scenario) << problems.front();
    EXPECT_EQ(scenario->name, "main");
    EXPECT_EQ(scenario->settings.seed, 7U);
    std::string steps;
    for (const Step& step : scenario->steps)
        steps += step.Place().substr(Path("").size()) + " " + step.text + "\n";
    EXPECT_EQ(steps,
              "road/begin.scenario:2 wait 1s\nroad/end.scenario:2 wait 2s\n"
              "road/begin.scenario:2 wait 1s\nroad/end.scenario:2 wait 2s\n"
              "road/begin.scenario:5 expect graphics x.png\nmain.scenario:3 wait 3s\n");

    EXPECT_FALSE(LoadScenario(Path("circle.scenario"), problems));
    EXPECT_TRUE(problems.back().ends_with("circle.scenario includes itself")) << problems.back();
    EXPECT_FALSE(LoadScenario(Path("leaves-open.scenario"), problems));
    EXPECT_TRUE(problems.back().ends_with("open.scenario has no end there")) << problems.back();
    EXPECT_FALSE(LoadScenario(Path("0"), problems));
    EXPECT_TRUE(problems.back().ends_with("with all that is included")) << problems.back();
}

}  // namespace
}  // namespace tests
