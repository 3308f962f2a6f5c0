#include "unit/probe/wizard_probe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/rig/wizard_run.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::ReadWizard;

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
            EXPECT_EQ(ReadWizard().value_or(unit::WizardState{-1, 0, 0, 0, ""}).step, -1);
    });
    run.Close();
    done = true;
    observer.join();
    EXPECT_GT(looks, 0U);
    // Names are for whatever number a wild program has.
    EXPECT_STREQ(unit::WizardStepName(7), "?");
    EXPECT_STREQ(unit::RunningStateName(5), "?");
}

}  // namespace
}  // namespace tests
