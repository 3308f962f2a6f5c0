#include "unit/scenario/scenario_run.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/cases.h"
#include "tests/unit_harness/wizard_run.h"

// Scenarios on the whole program and unit, in simulated time.

namespace tests {
namespace {

// The last line of the scenario must fail, with a problem that begins so. Returns the whole
// problem.
std::string Fails(WizardRun& run, const std::string& text, const std::string& problem) {
    const std::string found = run.RunScenario(text);
    const auto line = std::ranges::count(text, '\n');
    const std::string place = "text:" + std::to_string(line) + ": ";
    EXPECT_TRUE(found.starts_with(place)) << found;
    EXPECT_EQ(found.find(": " + problem), found.find(": ", place.size())) << found;
    return found;
}

// tests/scenarios shows that conditions hold; here are their failures.
TEST(Scenarios, FailWithTheActualState) {
    WizardRun run;
    ASSERT_EQ(run.RunScenario("wait button 'Power On' within 5s\nwait 1s"), "");
    const auto cases = CasesFrom(SCENARIO_CASES "/failing-scenarios.txt");
    EXPECT_EQ(cases.size(), 26U);
    std::string problems;
    for (const auto& [text, problem] : cases)
        problems += Fails(run, text, problem);
    // The latest events are shown, then the screen.
    EXPECT_NE(problems.find("  frame      to unit  "), std::string::npos) << problems;
    EXPECT_NE(problems.find("broadcast  _KESTA_Technology,Inc._All_APP_PowerStatusChange_ 0x1 0x1\n"
                            "    on the screen: "),
              std::string::npos)
        << problems;
}

TEST(Scenarios, FailAtTheirLimitOfEvents) {
    WizardRun run;
    platform::kernel::After(std::chrono::seconds(1), [&run] {
        for (std::size_t count = 0; count < unit::EventLog::kMaxEvents; ++count)
            run.unit().events().Publish(unit::FaultApplied{});
    });
    Fails(run, "wait 5s\n", "the run has more than 1000000 events, the limit for a scenario");
}

}  // namespace
}  // namespace tests
