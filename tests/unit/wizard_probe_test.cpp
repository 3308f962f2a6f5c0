#include "unit/probe/wizard_probe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/unit_harness/wizard_run.h"

namespace tests {
namespace {

using namespace std::chrono_literals;

TEST(WizardProbe, ReadsWhileTheWindowCloses) {
    unit::VirtualUnit::Options options;
    options.kernel.mode = platform::kernel::Mode::kFreeRunning;
    options.kernel.speed = 50;
    WizardRun run(options);
    ASSERT_TRUE(run.RunUntil([] { return unit::ReadWizard().has_value(); }, 60s));
    std::atomic<bool> done{false};
    std::size_t reads = 0;
    std::thread observer([&] {
        for (; !done; ++reads)
            EXPECT_EQ(unit::ReadWizard().value_or(unit::WizardState{-1, 0, 0, 0, ""}).step, -1);
    });
    run.Close();
    done = true;
    observer.join();
    EXPECT_GT(reads, 0U);
    // Numbers that a broken program could have.
    EXPECT_STREQ(unit::WizardStepName(7), "?");
    EXPECT_STREQ(unit::RunningStateName(5), "?");
}

TEST(WizardProbe, ReadsWhatTheDvrReported) {
    WizardRun run;
    EXPECT_EQ(run.RunScenario("wait 5s\ndvr indicate FW_Upgrade_Version 0531\nwait 1s"), "");
    const auto wizard = unit::ReadWizard();
    ASSERT_TRUE(wizard);
    EXPECT_EQ(wizard->step, 2);
    EXPECT_EQ(wizard->percent, 5);
    EXPECT_EQ(wizard->bin_version, '1');
    EXPECT_EQ(wizard->running_state, 2);
}

}  // namespace
}  // namespace tests
