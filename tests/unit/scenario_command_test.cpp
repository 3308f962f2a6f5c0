#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/process.h"

// The built `tolvane --scenario`: exit statuses, output, and the files that a failure saves.

namespace {

namespace fs = std::filesystem;

class ScenarioCommand : public tests::Process {
  protected:
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--out", Path("left"), "--scenario"});
        return tests::Process::Run(TOLVANE_BINARY, arguments);
    }
    bool Has(const std::string& file, const std::string& text) const {
        return Read(file).find(text) != std::string::npos;
    }
    std::string Write(const std::string& name, const std::string& text) {
        std::ofstream(Path(name)) << text;
        return Path(name);
    }
};

TEST_F(ScenarioCommand, ReportsFailuresInItsStatus) {
    const std::string passes = Write("passes.scenario", "wait button 'Power On'\nwait 2s\n");
    const std::string fails =
        Write("fails.scenario", "seed 9\nwait button 'Power On'\nexpect step result\n");
    const std::string wrong = Write("wrong.scenario", "# fine\nwait step 9\n");

    EXPECT_EQ(Run({passes, passes}), 0);
    EXPECT_EQ(Read("err"), "");
    EXPECT_TRUE(Has("out", "passes: passed, 2.")) << Read("out");
    EXPECT_FALSE(fs::exists(Path("left")));

    EXPECT_EQ(Run({fails, passes}), 1);
    EXPECT_TRUE(Read("err").starts_with("tolvane: " + fails +
                                        ":3: expect step result: not true; "
                                        "the step is -1, power on\n"))
        << Read("err");
    for (const auto& [file, text] : {std::pair("err", "seed 9; saved in " + Path("left/fails")),
                                     {"out", "fails: failed, "},
                                     {"out", "passes: passed, "},
                                     {"left/fails/debug.log", "---CMainFrame::OnCreate"},
                                     {"left/fails/failure.txt", "\nseed 9\n"},
                                     {"left/fails/screen.png", "PNG"}})
        EXPECT_TRUE(Has(file, text)) << text << " is not in " << Read(file);

    EXPECT_EQ(Run({passes, wrong}), 2);
    EXPECT_EQ(Read("err"), "tolvane: " + wrong +
                               ":2: '9' is not allowed after 'wait step'; allowed is power-on, "
                               "check-card, insert-card, updating, wait, remove-card, "
                               "result, reopen or STEP (a whole number from -1 to 6)\n");
    EXPECT_EQ(Read("out"), "");
}

TEST_F(ScenarioCommand, RepeatsASeedAndTheCommandLineSeedHasPriority) {
    const std::string file =
        Write("flow.scenario",
              "seed 9\nwait button 'Power On'\ntap 'Power On'\nwait button OK\ntap OK\n"
              "wait button Next\nexpect step result\n");
    std::string events[3];
    const char* const seeds[] = {"4", "4", "5"};
    for (int run = 0; run < 3; ++run) {
        ASSERT_EQ(Run({file, "--seed", seeds[run]}), 1) << Read("err");
        events[run] = Read("left/flow/events.log");
        EXPECT_TRUE(Has("left/flow/events.log", "frame      to unit  "));
    }
    EXPECT_EQ(events[0], events[1]);
    EXPECT_NE(events[0], events[2]);
}

// The line has faults and a plug over a pseudo-terminal too.
TEST_F(ScenarioCommand, FreeRunningOverAnyLine) {
    const std::string file = Write("free.scenario", "time free-running speed " FREE_SPEED R"(
fault line split 1ms frames
fault line delay 20ms StorageCardStatus acknowledgements
wait button 'Power On' within 5min
tap 'Power On' for 2s
wait button OK within 5min
tap OK
wait button Next within 5min
wait 3s
tap Next
wait text '5. DVR用SDカード挿入口にSDカードを入れて下さい。' within 5min
wait 6s
card in
wait button Update within 5min
tap Update
wait percent at least 2 within 5min
expect line fault '(split 1ms'
expect line fault '(delay 20ms'
line unplug
wait 1s
forget
expect no frame to-unit for 4s
line plug
wait percent at least 30 within 5min
)");
    EXPECT_EQ(Run({file, "--com9", "pty"}), 0) << Read("err");
}

TEST_F(ScenarioCommand, TheReferenceIsTheDocument) {
    ASSERT_EQ(tests::Process::Run(TOLVANE_BINARY, {"--help-scenarios"}), 0);
    std::ostringstream document;
    document << std::ifstream(TOLVANE_SCENARIO_DOCUMENT).rdbuf();
    EXPECT_EQ(Read("out"), document.str())
        << "tools/update-reference brings docs/scenarios.md up to date";
}

}  // namespace
