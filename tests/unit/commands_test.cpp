#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/unit_harness/wizard_run.h"
#include "unit/commands/unit_commands.h"
#include "unit/probe/wizard_probe.h"

// The results of commands; scenarios test their effects.

namespace tests {
namespace {

using namespace std::chrono_literals;
using namespace unit;

class Commands : public testing::Test {
  protected:
    Commands() { EXPECT_EQ(run_.RunScenario("wait button 'Power On' within 5s"), ""); }

    control::Outcome Execute(const char* line) {
        return UnitCommands().Execute(run_.unit_operator(), line);
    }

    WizardRun run_;
};

TEST_F(Commands, RefuseWhatIsImpossibleNow) {
    const std::pair<const char*, const char*> cases[] = {
        {"release", "the finger is not on the screen; press first"},
        {"move to 1 1", "the finger is not on the screen; press first"},
        {"card out", "there is no card to take out"},
        {"card in /no/such/folder", "/no/such/folder is not a folder"},
        {"wake", "the unit is awake"},
        {"fault driver XYZ1: missing",
         "there is no driver XYZ1:; allowed is one of COM9:, DVR1:, SCA0:"},
        {"fault line clear 1", "there is no fault 1 on the line; allowed is none now"},
        {"screenshot /no/such/folder/x.png", "/no/such/folder/x.png: No such file or directory"},
    };
    for (const auto& [line, problem] : cases) {
        const control::Outcome outcome = Execute(line);
        EXPECT_FALSE(outcome.done) << line;
        EXPECT_EQ(outcome.text, problem) << line;
    }
    const std::string missing = Execute("tap Nowhere").text;
    EXPECT_TRUE(missing.starts_with("there is no Nowhere on the screen; there is ")) << missing;
    EXPECT_NE(missing.find("\"Power On\""), std::string::npos) << missing;
    EXPECT_TRUE(Execute("tap 'Power On'").done);
    EXPECT_EQ(Execute("press OK").text, "the finger is in the middle of a tap");
}

TEST_F(Commands, ReportWhatTheyDid) {
    const std::pair<const char*, std::string> lines[] = {
        {"fault line corrupt checksum of FW_Upgrade_Version indications",
         "fault 1: corrupt checksum of FW_Upgrade_Version indications"},
        {"fault line drop frames to-unit", "fault 2: drop frames to-unit"},
        {"fault line clear 1", ""},
        {"fault line list", "fault 2: drop frames to-unit, applied to 0 of 0"},
        // No fault applies to injected bytes.
        {"line inject A55A20801100010001B1 to-unit", ""},
        {"battery 40 flag 2", ""},
        {"battery 30", ""},
    };
    for (const auto& [line, text] : lines) {
        const control::Outcome outcome = Execute(line);
        EXPECT_TRUE(outcome.done) << line;
        EXPECT_EQ(outcome.text, text) << line;
    }
    run_.RunFor(1s);
    EXPECT_TRUE(run_.Logged("DVR_MODE_VIDEO"));
    EXPECT_EQ(run_.unit().supply().battery_flag, 2);
}

// `fault list` prints the commands that set the faults again; `fault clear` clears all faults.
TEST_F(Commands, ListFaultsAsTheCommandsThatSetThem) {
    const char* const set[] = {
        "fault call CreateFileW after 2 times 3 error 5",
        "fault any-call always",
        "fault driver DVR1: refuses code 0x881 error 170",
        "fault driver DVR1: refuses error 31 times 2",
        "fault driver SCA0: missing",
        "fault hal refuses",
        "fault battery-driver fails",
        "fault line drop frames to-unit",
        "fault dvr silent on",
        "fault dvr silent-card on",
        "fault dvr silent-version on",
        "fault dvr slow 2",
        "fault dvr copies 3",
        "fault dvr repeat-card 1.5ms",
        "fault dvr version 'a b'",
        "fault dvr image-version x",
        "fault dvr stop-at 1",
        "fault dvr stuck-at 2",
        "fault dvr fail-at 3",
        "fault dvr reboot-at 4",
        "fault dvr jump-back 5 6",
    };
    std::string expected;
    for (const char* const line : set) {
        EXPECT_TRUE(Execute(line).done) << line;
        expected += (expected.empty() ? "" : "\n") + std::string(line);
    }
    std::ranges::replace(expected, '\'', '"');
    EXPECT_EQ(Execute("fault list").text, expected);
    EXPECT_TRUE(Execute("fault clear").done);
    EXPECT_EQ(Execute("fault list").text, "");
    EXPECT_TRUE(Execute("fault driver SCA0: late 30s").done);
    EXPECT_EQ(Execute("fault list").text, "fault driver SCA0: late 30000ms");
    run_.RunFor(30s);
    EXPECT_EQ(Execute("fault list").text, "");
}

TEST_F(Commands, FaultsHaveALimit) {
    const std::pair<const char*, const char*> cases[] = {
        {"fault line drop bytes", "the line has 1000 faults already; no more are allowed"},
        {"fault call CreateFileW", "1000 faults of calls are pending; no more are allowed"},
    };
    for (const auto& [line, problem] : cases) {
        for (int count = 0; count < 1000; ++count)
            ASSERT_TRUE(Execute(line).done);
        EXPECT_EQ(Execute(line).text, problem);
    }
    EXPECT_TRUE(Execute("fault clear").done);
}

TEST(WizardProbe, ReadsWhileTheWindowCloses) {
    unit::VirtualUnit::Options options;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = 50;
    WizardRun run(options);
    ASSERT_TRUE(run.RunUntil([] { return ReadWizard().has_value(); }, 60s));
    std::atomic<bool> done{false};
    std::size_t reads = 0;
    std::thread observer([&] {
        for (; !done; ++reads)
            EXPECT_EQ(ReadWizard().value_or(unit::WizardState{-1, 0, 0, 0, ""}).step, -1);
    });
    run.Close();
    done = true;
    observer.join();
    EXPECT_GT(reads, 0U);
    // Numbers that a broken program could have.
    EXPECT_STREQ(unit::WizardStepName(7), "?");
    EXPECT_STREQ(unit::RunningStateName(5), "?");
}

}  // namespace
}  // namespace tests
