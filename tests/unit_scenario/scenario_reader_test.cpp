#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

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

TEST(ScenarioReader, RefusesAWrongLineWithPlaceAndWhatIsAllowed) {
    const std::pair<const char*, const char*> cases[] = {
        {"wait 1s\nrepeat 2 times", "a.scenario:2: 'times' is too much after 'repeat 2'"},
        {"wait step updatin",
         "a.scenario:1: 'updatin' is not allowed after 'wait step'; allowed is power-on, "
         "check-card, insert-card, updating, please-wait, remove-card, result, reopen or STEP (a "
         "whole number from -1 to 6)"},
        {"# fine\n\n  \t\nwait text 'OK' within 5",
         "a.scenario:4: '5' is not allowed after 'wait text OK within'; allowed is LIMIT (a number "
         "with ms, s or min, such as 500ms)"},
        {"wait no log fail",
         "a.scenario:1: 'log' is not allowed after 'wait no'; allowed is step, "
         "text, button, percent, video, suspended, program or firmware"},
        {"tap \"Power On", "a.scenario:1: a quote \" is not closed"},
        {"release now", "a.scenario:1: 'now' is too much after 'release'"},
        {"wait 1s\nseed 3",
         "a.scenario:2: 'seed 3' holds from the start and must stand before the "
         "first other command"},
        {"time free-running speed 2000",
         "a.scenario:1: '2000' is not allowed after 'time free-running speed'; allowed is SPEED (a "
         "number from 0.1 to 1000)"},
        {"wait frame FW_Upgrade to-unit",
         "a.scenario:1: 'FW_Upgrade' is no command of the DVR; allowed is a name such as "
         "FW_Upgrade_Version, or a number such as 0x2E"},
        {"fault line drop Nonsense frames",
         "a.scenario:1: 'Nonsense' is no command of the DVR; allowed is a name such as "
         "FW_Upgrade_Version, or a number such as 0x2E"},
        {"end", "a.scenario:1: there is no repeat to end"},
        {"repeat 2\nwait 1s", "a.scenario:1: this repeat has no end"},
        {"repeat 1000\nrepeat 1000\nwait 1s\nend\nend",
         "a.scenario:5: the repetitions make more than 100000 commands"},
        {"include /no/such/file",
         "a.scenario:1: /no/such/file: cannot be read: No such file or directory"},
        {"include /", "a.scenario:1: /: cannot be read: Is a directory"},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(ProblemsOf(text), std::vector<std::string>{problem}) << text;
    // The unit's own commands, of which more may come.
    const std::vector<std::string> card = ProblemsOf("wait 1s\ncard inn");
    ASSERT_EQ(card.size(), 1U);
    EXPECT_TRUE(
        card[0].starts_with("a.scenario:2: 'inn' is not allowed after 'card'; allowed is in"))
        << card[0];
    EXPECT_EQ(ProblemsOf("tapp\nwait 1s\nwait 1h").size(), 2U);
}

TEST(ScenarioReader, TakesInFilesFromTheirOwnFoldersButNeverInACircle) {
    char name[] = "/tmp/tolvane-test-XXXXXX";
    const std::filesystem::path folder = mkdtemp(name);
    std::filesystem::create_directory(folder / "road");
    std::ofstream(folder / "main.scenario") << "seed 7\ninclude road/begin.scenario\nwait 3s\n";
    std::ofstream(folder / "road/begin.scenario")
        << "repeat 2\nwait 1s\ninclude end.scenario\nend\nexpect graphics x.png\n";
    std::ofstream(folder / "road/end.scenario") << "\nwait 2s";
    std::ofstream(folder / "circle.scenario") << "include road/../circle.scenario\n";
    std::ofstream(folder / "open.scenario") << "repeat 2\n";
    std::ofstream(folder / "leaves-open.scenario") << "include open.scenario\nwait 1s\n";

    std::vector<std::string> problems;
    const auto scenario = LoadScenario(folder / "main.scenario", problems);
    ASSERT_TRUE(scenario) << problems.front();
    EXPECT_EQ(scenario->name, "main");
    EXPECT_EQ(scenario->settings.seed, 7U);
    std::string steps;
    for (const Step& step : scenario->steps)
        steps += step.Place().substr(folder.string().size()) + " " + step.text + "\n";
    EXPECT_EQ(steps,
              "/road/begin.scenario:2 wait 1s\n/road/end.scenario:2 wait 2s\n"
              "/road/begin.scenario:2 wait 1s\n/road/end.scenario:2 wait 2s\n"
              "/road/begin.scenario:5 expect graphics x.png\n/main.scenario:3 wait 3s\n");

    EXPECT_FALSE(LoadScenario(folder / "circle.scenario", problems));
    EXPECT_TRUE(problems.back().ends_with("circle.scenario includes itself")) << problems.back();
    EXPECT_FALSE(LoadScenario(folder / "leaves-open.scenario", problems));
    EXPECT_TRUE(problems.back().ends_with("open.scenario has no end there")) << problems.back();
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace tests
