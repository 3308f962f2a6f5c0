#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/process.h"

// `tolvane --scenario` as an engineer starts it: exit statuses, lines, and what a failure leaves.

namespace {

namespace fs = std::filesystem;

class ScenarioCommand : public tests::Process {
  protected:
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--out", Path("left"), "--scenario"});
        return tests::Process::Run(TOLVANE_BINARY, arguments);
    }
    std::string Write(const std::string& name, const std::string& text) {
        std::ofstream(Path(name)) << text;
        return Path(name);
    }
};

TEST_F(ScenarioCommand, TellsInItsStatusWhetherAllPassed) {
    const std::string passes = Write("passes.scenario", "wait button 'Power On'\nwait 2s\n");
    const std::string fails =
        Write("fails.scenario", "seed 9\nwait button 'Power On'\nexpect step result\n");
    const std::string wrong = Write("wrong.scenario", "# fine\nwait step 9\n");

    EXPECT_EQ(Run({passes, passes}), 0) << Read("err");
    EXPECT_EQ(Read("err"), "");
    const std::string summary = Read("out");
    EXPECT_NE(summary.find("passes: passed, 2."), std::string::npos) << summary;
    EXPECT_FALSE(fs::exists(Path("left")));

    EXPECT_EQ(Run({fails, passes}), 1);
    EXPECT_TRUE(Read("err").starts_with("tolvane: " + fails +
                                        ":3: expect step result: it is not so; "
                                        "the step is -1, power on\n"))
        << Read("err");
    EXPECT_NE(Read("err").find("seed 9; saved in " + Path("left/fails")), std::string::npos);
    EXPECT_NE(Read("out").find("fails: failed, "), std::string::npos) << Read("out");
    EXPECT_NE(Read("out").find("passes: passed, "), std::string::npos) << Read("out");
    EXPECT_NE(Read("left/fails/debug.log").find("---CMainFrame::OnCreate"), std::string::npos);
    EXPECT_NE(Read("left/fails/failure.txt").find("\nseed 9\n"), std::string::npos);
    EXPECT_GT(fs::file_size(Path("left/fails/screen.png")), 1000U);

    EXPECT_EQ(Run({passes, wrong}), 2);
    EXPECT_EQ(Read("err"), "tolvane: " + wrong +
                               ":2: '9' is not allowed after 'wait step'; allowed is power-on, "
                               "check-card, insert-card, updating, please-wait, remove-card, "
                               "result, reopen or STEP (a whole number from -1 to 6)\n");
    EXPECT_EQ(Read("out"), "");
}

TEST_F(ScenarioCommand, SameSeedSameEventsAndTheCommandLinesWins) {
    const std::string file =
        Write("walk.scenario",
              "seed 9\nwait button 'Power On'\ntap 'Power On'\nwait button OK\ntap OK\n"
              "wait button Next\nexpect step result\n");
    std::string events[3];
    const char* const seeds[] = {"4", "4", "5"};
    for (int run = 0; run < 3; ++run) {
        ASSERT_EQ(Run({file, "--seed", seeds[run]}), 1) << Read("err");
        events[run] = Read("left/walk/events.log");
        EXPECT_NE(events[run].find("frame      to unit  "), std::string::npos);
    }
    EXPECT_EQ(events[0], events[1]);
    EXPECT_NE(events[0], events[2]);
}

TEST_F(ScenarioCommand, RunsFreeWhenTold) {
    const std::string file = Write("free.scenario",
                                   "time free-running speed 50\n"
                                   "wait button 'Power On' within 1min\n"
                                   "tap 'Power On' for 2s\nwait button OK within 1min\n");
    EXPECT_EQ(Run({file}), 0) << Read("err");
}

TEST_F(ScenarioCommand, TheReferenceIsTheOneInTheDocuments) {
    ASSERT_EQ(tests::Process::Run(TOLVANE_BINARY, {"--help-scenarios"}), 0);
    std::ostringstream document;
    document << std::ifstream(TOLVANE_SCENARIO_DOCUMENT).rdbuf();
    EXPECT_EQ(Read("out"), document.str())
        << "tools/update-reference brings docs/scenarios.md up to date";
}

}  // namespace
