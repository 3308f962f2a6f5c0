#include <gtest/gtest.h>

#include <iostream>
#include <ranges>

#include "tests/campaign/plan.h"
#include "tests/campaign/trial.h"
#include "tests/endurance/resource_snapshot.h"
#include "tests/support/numbers.h"
#include "tests/unit_harness/car_driver.h"

// Many updates in one process: nothing may grow.

namespace tests {
namespace {

using namespace std::chrono_literals;
using campaign::FaultKind;
using campaign::Flow;

#ifdef TOLVANE_SANITIZED
constexpr std::uint64_t kSimulated = 20;
// Enough for a sanitizer's own thread to be there; memory is not measured then.
constexpr std::ptrdiff_t kFlowsBefore = 1;
#else
constexpr std::uint64_t kSimulated = 200;
// What is drawn on them stays in caches of a size of their own.
constexpr std::ptrdiff_t kFlowsBefore = 100;
#endif
constexpr std::uint64_t kFreeRunning = 4;
constexpr double kSpeed = 50;
constexpr int kMostTries = 4;

// Runs update after update, and looks at what is held before, on the way and at the end.
template <class Update>
void Soak(const char* what, std::uint64_t count, Update update) {
    for (const Flow& flow : campaign::Flows() | std::views::take(kFlowsBefore))
        campaign::RunCase({&flow, 1, {}});
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

// Every third one is healthy; the others are met by one or two faults, and end with a whole update
// after that. A call that fails may leave something behind, so no call fails here.
TEST(Soak, OfSimulatedUpdatesWithFaultsLeavesNothing) {
    std::vector<const Flow*> flows;
    for (const Flow& flow : campaign::Flows())
        flows.push_back(&flow);
    std::vector<const FaultKind*> kinds;
    for (const FaultKind& kind : campaign::FaultKinds())
        if (kind.name != campaign::kFails)
            kinds.push_back(&kind);
    const std::uint64_t count = NumberFrom("TOLVANE_SOAK_SIMULATED", kSimulated);
    const auto baselines = campaign::MeasureBaselines(
        flows, 1, [](const auto&, const std::string& finding) { ADD_FAILURE() << finding; });
    const auto cases =
        campaign::Sample(baselines, kinds, 2, count, static_cast<std::uint32_t>(Seed()));
    Soak("simulated updates", count, [&](std::uint64_t number) {
        campaign::Case trial = cases[number - 1];
        trial.seed = static_cast<std::uint32_t>(number);
        trial.faults.resize(number % 3);
        for (const std::string& finding : campaign::RunCase(trial).findings)
            ADD_FAILURE() << campaign::ToText(trial) << ": " << finding;
    });
}

// In real threads at high speed. What happens is the flow's; a healthy DVR is updated in the end.
TEST(Soak, OfFreeRunningUpdatesLeavesNothing) {
    const std::uint64_t count = NumberFrom("TOLVANE_SOAK_FREE", kFreeRunning);
    Soak("free-running updates", count, [](std::uint64_t number) {
        const Flow& flow = campaign::Flows()[(Seed() + number) % campaign::Flows().size()];
        SCOPED_TRACE(flow.name);
        unit::VirtualUnit::Options options;
        options.kernel.mode = platform::kernel::Mode::kFreeRunning;
        options.kernel.speed = kSpeed;
        options.dvr.dvr.seed = static_cast<std::uint32_t>(number);
        flow.prepare(options);
        // Without one of its drivers the unit comes as far as that flow goes.
        const auto wanted = options.missing_drivers.empty() ? CarDriver::End::kSuccess : flow.end;
        WizardRun run(options);
        CarDriver driver(run);
        auto end = flow.drive(run, driver);
        // The host may let so much of the unit's time pass that a driver gives up.
        for (int again = 0; end != wanted && again < kMostTries; ++again) {
            run.unit().dvr().dvr()->SetFaults({});
            driver.CyclePower();
            end = driver.Drive(300s);
        }
        EXPECT_EQ(end, wanted);
        run.Close();
    });
}

}  // namespace
}  // namespace tests
