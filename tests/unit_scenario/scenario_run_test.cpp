#include "unit/scenario/scenario_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/cases.h"
#include "tests/support/process.h"
#include "tests/unit_harness/wizard_run.h"
#include "unit/picture/picture.h"
#include "unit/state/unit_state.h"

// Scenarios on the whole program and unit, in simulated time.

namespace tests {
namespace {

using namespace std::chrono_literals;
using namespace unit;
namespace fs = std::filesystem;

class Scenarios : public Process {
  protected:
    Scenarios() {
        options_.out = Path("out");
        options_.say = [this](const std::string& line) { said_ += line + "\n"; };
    }

    // Runs the scenario on the unit as the last one left it. Returns the first line of the problem,
    // without the file; empty when it passed.
    std::string Run(const std::string& text) {
        std::vector<std::string> problems;
        auto scenario = ReadScenario(text, Path("a.scenario"), problems);
        if (!scenario)
            return "unread: " + problems.front();
        ScenarioRun run(operator_, std::move(*scenario), options_);
        run.Start();
        platform::kernel::RunHostThread([&] { return run.finished(); });
        problem_ = run.problem();
        duration_ = run.duration();
        EXPECT_EQ(run.passed(), problem_.empty());
        const std::string place = Path("a.scenario:");
        EXPECT_TRUE(problem_.empty() || problem_.starts_with(place)) << problem_;
        const std::size_t from = std::min(place.size(), problem_.size());
        return problem_.substr(from, problem_.find('\n') - from);
    }

    // The last line of the scenario must fail, with a problem that begins so.
    void Fails(const std::string& text, const std::string& problem) {
        const std::string found = Run(text);
        const auto line = std::ranges::count(text, '\n') + (text.ends_with('\n') ? 0 : 1);
        EXPECT_TRUE(found.starts_with(std::to_string(line) + ": ")) << found;
        const std::string said = found.substr(std::min(found.find(": ", 4), found.size()));
        EXPECT_TRUE(said.starts_with(": " + problem)) << found;
    }

    std::string said_;
    RunOptions options_;
    WizardRun run_;
    Operator operator_{run_.unit(), ""};
    std::string problem_;
    platform::kernel::Duration duration_{};
};

// tests/scenarios shows that conditions hold; here are their failures.
TEST_F(Scenarios, FailWithTheActualState) {
    ASSERT_EQ(Run("wait button 'Power On' within 5s\nwait 1s"), "");
    const auto cases = CasesFrom(SCENARIO_CASES "/failing-scenarios.txt");
    EXPECT_EQ(cases.size(), 15U);
    std::string problems;
    for (const auto& [text, problem] : cases) {
        Fails(text, problem);
        problems += problem_;
    }
    // The latest events are shown, then the screen.
    EXPECT_NE(problems.find("  frame      to unit  "), std::string::npos) << problems;
    EXPECT_NE(problems.find("broadcast  _KESTA_Technology,Inc._All_APP_PowerStatusChange_ 0x1 0x1\n"
                            "    on the screen: "),
              std::string::npos)
        << problems;
}

TEST_F(Scenarios, WaitAndPrintMessages) {
    ASSERT_EQ(Run("repeat 3\nwait 1.5s\nsay 'so far'\nend"), "");
    EXPECT_EQ(said_, "so far\nso far\nso far\n");
    EXPECT_EQ(duration_, 4500ms);
}

TEST_F(Scenarios, ComparePicturesAndSaveTheDifference) {
    options_.pictures = Path("pictures");
    options_.update_screens = true;
    ASSERT_EQ(Run("wait button 'Power On'\nwait 1s\nexpect screen first.png\n"
                  "expect graphics plain.png\npicture a\npicture b"),
              "");
    EXPECT_TRUE(fs::exists(options_.pictures + "/01-a.png"));
    EXPECT_TRUE(fs::exists(options_.pictures + "/02-b.png"));
    options_.update_screens = false;
    EXPECT_EQ(Run("expect screen first.png\nexpect graphics plain.png"), "");

    std::string problem;
    auto picture = ReadPng(Path("first.png"), problem);
    ASSERT_TRUE(picture) << problem;
    picture->pixels[800 * 20 + 30] ^= 0x0000FF;
    picture->pixels[800 * 22 + 29] ^= 0x010000;
    ASSERT_TRUE(WritePng(*picture, Path("other.png"), problem));
    const std::string saved = Path("out/a/");
    Fails("expect screen other.png",
          "2 pixels differ, from 29,20 to 30,22; see " + saved + "other-difference.png");
    EXPECT_EQ(ReadPng(saved + "other-actual.png", problem), ReadPng(Path("first.png"), problem));
    EXPECT_EQ(ReadPng(saved + "other-expected.png", problem), picture);
    const auto difference = ReadPng(saved + "other-difference.png", problem);
    ASSERT_TRUE(difference) << problem;
    EXPECT_EQ(std::ranges::count(difference->pixels, 0xFF2020U), 2);
    EXPECT_EQ(difference->At(30, 20), 0xFF2020U);
    for (const char* file : {"failure.txt", "state.json", "screen.png", "debug.log", "events.log"})
        EXPECT_TRUE(fs::exists(saved + file)) << file;

    ASSERT_TRUE(WritePng({1, 1, {0}}, Path("small.png"), problem));
    Fails("expect graphics small.png", "it is 800 x 480 pixels, expected 1 x 1");
    ASSERT_TRUE(WritePng({4097, 1, std::vector<std::uint32_t>(4097)}, Path("wide.png"), problem));
    Fails("expect screen wide.png",
          Path("wide.png: the picture is 4097 x 1; at most 4096 x 4096 are allowed"));
    Fails("expect screen none.png", Path("none.png: No such file or directory"));
}

TEST_F(Scenarios, ReportTheirCommandWhenStopped) {
    std::vector<std::string> problems;
    ScenarioRun run(operator_, *ReadScenario("wait 1s\nwait 1min", "b.scenario", problems), {});
    run.Start();
    run_.RunFor(5s);
    EXPECT_FALSE(run.finished());
    EXPECT_EQ(run.position(), 1U);
    run.Stop("interrupted");
    EXPECT_TRUE(run.finished());
    EXPECT_FALSE(run.passed());
    EXPECT_TRUE(run.problem().starts_with("b.scenario:2: wait 1min: interrupted\n"))
        << run.problem();
}

TEST_F(Scenarios, FailAtTheirLimitOfEvents) {
    platform::kernel::After(1s, [this] {
        for (std::size_t count = 0; count < EventLog::kMaxEvents; ++count)
            run_.unit().events().Publish(FaultApplied{});
    });
    Fails("wait 5s", "the run has more than 1000000 events, the limit for a scenario");
}

TEST(StateJson, ReplacesTextThatIsNotUtf8) {
    VirtualUnit::Options options;
    options.dvr.dvr.firmware_version = "14.\xFF";
    WizardRun run(options);
    EXPECT_NE(StateJson(run.unit()).find("\"14.\xEF\xBF\xBD\""), std::string::npos);
}

}  // namespace
}  // namespace tests
