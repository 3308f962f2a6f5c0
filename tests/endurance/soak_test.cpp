#include <gtest/gtest.h>

#include <iostream>
#include <ranges>

#include "tests/campaign/case_run.h"
#include "tests/campaign/plan.h"
#include "tests/endurance/resource_snapshot.h"
#include "tests/support/numbers.h"

// Many updates in one process: what it holds must not grow.

namespace tests {
namespace {

using campaign::Case;
using campaign::FaultKind;
using campaign::Flow;

#ifdef TOLVANE_SANITIZED
constexpr std::uint64_t kSimulated = 20;
// Enough for a sanitizer's own thread to be there; memory is not measured then.
constexpr std::ptrdiff_t kFlowsBefore = 1;
#else
constexpr std::uint64_t kSimulated = 200;
// What is drawn on them stays in caches of limited size.
constexpr std::ptrdiff_t kFlowsBefore = 100;
#endif
constexpr std::uint64_t kFreeRunning = 4;
constexpr double kSpeed = 50;
constexpr int kMostTries = 4;

// Runs update after update, and compares what is held at the start, halfway and at the end.
template <class Update>
void Soak(const char* what, std::uint64_t count, Update update) {
    for (const Flow& flow : campaign::Flows() | std::views::take(kFlowsBefore))
        campaign::RunCase({&flow});
    const ResourceSnapshot begin = ResourceSnapshot::Take();
    std::cout << "before " << count << " " << what << ": " << begin.Text() << "\n";
    for (std::uint64_t done = 1; done <= count && !testing::Test::HasFailure(); ++done) {
        update(done);
        if (done == count / 2 || done == count)
            std::cout << "after " << done << " " << what << ": " << ResourceSnapshot::Take().Text()
                      << "\n";
    }
    EXPECT_EQ(Growth(begin, ResourceSnapshot::Take()), "");
}

// tools/soak sets the variables.
std::uint64_t Seed() {
    return NumberFrom("TOLVANE_SOAK_SEED", 1);
}

// Every third update has no fault, the others have one or two and end with a whole update. A call
// that fails may leave something behind, so no call fails here.
TEST(Soak, OfSimulatedUpdatesWithFaultsLeavesNothing) {
    auto kinds = campaign::Chosen("fault", {}, campaign::FaultKinds());
    std::erase_if(kinds, [](const FaultKind* kind) {
        return campaign::Fault{kind, campaign::kCall, 1}.FailsCalls();
    });
    const std::uint64_t count = NumberFrom("TOLVANE_SOAK_SIMULATED", kSimulated);
    const auto baselines = campaign::MeasureBaselines(
        campaign::Chosen("flow", {}, campaign::Flows()), 1,
        [](const auto&, const std::string& finding) { ADD_FAILURE() << finding; });
    const auto cases =
        campaign::Sample(baselines, kinds, 2, count, static_cast<std::uint32_t>(Seed()));
    Soak("simulated updates", count, [&](std::uint64_t number) {
        Case test_case = cases[number - 1];
        test_case.seed = static_cast<std::uint32_t>(number);
        test_case.faults.resize(number % 3);
        for (const std::string& finding : campaign::RunCase(test_case).findings)
            ADD_FAILURE() << campaign::ToText(test_case) << ": " << finding;
    });
}

// In real threads at high speed. Each runs a flow and updates a healthy DVR in the end.
TEST(Soak, OfFreeRunningUpdatesLeavesNothing) {
    const std::uint64_t count = NumberFrom("TOLVANE_SOAK_FREE", kFreeRunning);
    Soak("free-running updates", count, [](std::uint64_t number) {
        const Flow& flow = campaign::Flows()[(Seed() + number) % campaign::Flows().size()];
        SCOPED_TRACE(flow.name);
        unit::VirtualUnit::Options options = OptionsFrom(flow.begin);
        options.kernel.mode = platform::kernel::Mode::kFreeRunning;
        options.kernel.speed = kSpeed;
        options.dvr.dvr.seed = static_cast<std::uint32_t>(number);
        // A unit without one of its drivers can do no more than that flow does.
        const auto wanted = options.missing_drivers.empty() ? CarDriver::End::kSuccess : flow.end;
        WizardRun run(options);
        CarDriver driver(run);
        auto end = campaign::RunFlow(flow, run, driver);
        // So much of the unit's time may pass on a busy host that a driver gives up.
        for (int again = 0; end != wanted && again < kMostTries; ++again) {
            run.unit().dvr().dvr()->SetFaults({});
            driver.CyclePower();
            end = driver.Drive(campaign::kLongestDrive);
        }
        EXPECT_EQ(end, wanted);
        run.Close();
    });
}

}  // namespace
}  // namespace tests
