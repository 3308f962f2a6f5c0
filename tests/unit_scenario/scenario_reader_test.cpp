#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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

TEST(ReadScenario, RefusesAWrongLineWithPlaceAndWhatIsAllowed) {
    const std::string no_command =
        "is no command of the DVR; allowed is a name such as FW_Upgrade_Version, or a number such "
        "as 0x2E";
    const std::string too_long =
        " too long; at most 1048576 bytes are allowed, with all that is included";
    const std::pair<std::string, std::string> cases[] = {
        {"wait 1s\nrepeat 2 times", ":2: 'times' is not expected after 'repeat 2'"},
        {"# fine\n\n  \t\nwait text 'OK' within 5",
         ":4: '5' is not allowed after 'wait text OK within'; allowed is LIMIT (a number with ms, "
         "s "
         "or min, such as 500ms)"},
        {"wait no log fail",
         ":1: 'log' is not allowed after 'wait no'; allowed is step, text, button, percent, video, "
         "suspended, program or firmware"},
        {"tap \"Power On", ":1: a quote \" is not closed"},
        {"wait 1s\nseed 3",
         ":2: 'seed 3' holds from the start and must stand before the first other command"},
        {"time free-running speed 2000",
         ":1: '2000' is not allowed after 'time free-running speed'; allowed is SPEED (a number "
         "from 0.1 to 1000)"},
        {"wait frame FW_Upgrade to-unit", ":1: 'FW_Upgrade' " + no_command},
        {"fault line drop Nonsense frames", ":1: 'Nonsense' " + no_command},
        {"end", ":1: there is no repeat to end"},
        {"repeat 2\nwait 1s", ":1: this repeat has no end"},
        {"include /no/such/file", ":1: /no/such/file: cannot be read: No such file or directory"},
        {"include /", ":1: /: cannot be read: Is a directory"},
        {"\r\nsay \x1B[2J", ":2: the line is not plain UTF-8 text"},
        {"say \xC3", ":1: the line is not plain UTF-8 text"},
        // Endless input.
        {"include /dev/zero", ":1:" + too_long},
        {std::string(1024 * 1024 + 1, '\n'), ":" + too_long},
        {"repeat 1000\nrepeat 1000\nwait 1s\nend\nend",
         ":5: the repetitions make more than 100000 commands"},
        {"repeat 100000\nrelease\nend\nrelease", ":4: there are more than 100000 commands"},
        {"release\nrepeat 100000\nrelease\nend\n",
         ":4: the repetitions make more than 100000 commands"},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(ProblemsOf(text), Problems{"a.scenario" + problem}) << text.substr(0, 200);
    // Takes no time, however often.
    EXPECT_EQ(ProblemsOf("repeat 1000000000\nrepeat 1000000000\nend\nend\n"), Problems());
    EXPECT_EQ(ProblemsOf(Repeated(8000, "repeat 1\n") + Repeated(8000, "release\n") +
                         Repeated(8000, "end\n")),
              Problems());
    EXPECT_EQ(ProblemsOf("tapp\nwait 1s\nwait 1h").size(), 2U);
    EXPECT_LE(ProblemsOf(Repeated(1000, "repeat 2\n")).size(), 101U);
    const Problems many = ProblemsOf(Repeated(1000, "tapp\n"));
    EXPECT_EQ(many.size(), 101U);
    EXPECT_EQ(many.back(), "a.scenario:101: no more is told than 100 problems");
}

class ScenarioFiles : public Process {};

TEST_F(ScenarioFiles, AreTakenInFromTheirOwnFoldersButNeverInACircle) {
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
                                    {"0", "with all that is included"}}) {
        EXPECT_FALSE(LoadScenario(Path(name), problems));
        EXPECT_TRUE(problems.back().ends_with(end)) << problems.back();
    }
}

}  // namespace
}  // namespace tests
