#include "unit/probe/wizard_probe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/rig/wizard_run.h"

namespace unit {

void PrintTo(const WizardState& wizard, std::ostream* out) {
    *out << wizard.step << ' ' << wizard.percent << ' ' << wizard.bin_version << ' '
         << wizard.running_state << ' ' << wizard.dvr_version;
}

}  // namespace unit

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::ReadWizard;
using unit::WizardState;

TEST(WizardProbe, ReadsTheWizardWhileItsWindowStands) {
    EXPECT_EQ(ReadWizard(), std::nullopt);
    WizardRun run;
    run.GoToInsertCard();
    EXPECT_EQ(ReadWizard(), (WizardState{1, 0, 0, 2, "1.00.05"}));
    run.Close();
    EXPECT_EQ(ReadWizard(), std::nullopt);
}

TEST(WizardProbe, NamesStepsAndStatesAndNoOthers) {
    EXPECT_STREQ(unit::WizardStepName(-1), "power on");
    EXPECT_STREQ(unit::WizardStepName(6), "reopen");
    EXPECT_STREQ(unit::WizardStepName(7), "?");
    EXPECT_STREQ(unit::RunningStateName(3), "rebooting");
    EXPECT_STREQ(unit::RunningStateName(5), "?");
}

TEST(WizardProbe, MayLookWhileTheWindowCloses) {
    unit::VirtualUnit::Options options;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = 50;
    WizardRun run(options);
    ASSERT_TRUE(run.RunUntil([] { return ReadWizard().has_value(); }, 60s));
    std::atomic<bool> done{false};
    std::size_t looks = 0;
    std::thread observer([&] {
        for (; !done; ++looks)
            EXPECT_EQ(ReadWizard().value_or(WizardState{-1, 0, 0, 0, ""}).step, -1);
    });
    run.Close();
    done = true;
    observer.join();
    EXPECT_GT(looks, 0U);
}

}  // namespace
}  // namespace tests
