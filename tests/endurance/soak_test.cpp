#include <gtest/gtest.h>

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <ranges>

#include "tests/campaign/campaign.h"
#include "tests/support/numbers.h"
#include "tests/support/progress.h"

// Many updates in one process: what it holds must not grow.

namespace tests {
namespace {

using campaign::Case;
using campaign::FaultKind;
using campaign::Flow;

#ifdef TOLVANE_SANITIZED
constexpr std::uint64_t kSimulated = 20;
// Enough for a sanitizer's own thread to be there.
constexpr std::ptrdiff_t kFlowsBefore = 1;
// A sanitizer keeps what was freed.
constexpr std::size_t kMayGrowAllocated = 1UL << 30;
constexpr std::size_t kMayGrowResident = 1UL << 30;
#else
constexpr std::uint64_t kSimulated = 200;
// What is drawn on them stays in caches of limited size.
constexpr std::ptrdiff_t kFlowsBefore = 100;
// Caches that fill up, and fragments.
constexpr std::size_t kMayGrowAllocated = 256UL * 1024;
// Each real thread leaves pages of a heap of its own behind, for the next one.
constexpr std::size_t kMayGrowResident = 16UL * 1024 * 1024;
#endif
constexpr std::uint64_t kFreeRunning = 4;
constexpr double kSpeed = 50;
constexpr int kMostTries = 4;

// What this process holds between two updates.
struct Held {
    std::ptrdiff_t threads, descriptors;
    std::size_t allocated, resident;  // bytes
};

// Prints it too.
Held HeldAfter(std::uint64_t updates) {
    const auto files_in = [](const char* folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    };
    malloc_trim(0);
    std::size_t pages = 0, resident_pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident_pages;
    const Held held{files_in("/proc/self/task"), files_in("/proc/self/fd"), mallinfo2().uordblks,
                    resident_pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE))};
    std::cout << "after " << updates << " updates: " << held.threads << " threads, "
              << held.descriptors << " descriptors, " << held.allocated / 1024 << " KiB allocated, "
              << held.resident / 1024 << " KiB resident\n";
    return held;
}

// Runs update after update.
template <class Update>
void Soak(std::uint64_t count, Update update) {
    for (const Flow& flow : campaign::Flows() | std::views::take(kFlowsBefore))
        campaign::RunCase({&flow});
    const Held begin = HeldAfter(0);
    for (std::uint64_t done = 1; done <= count && !testing::Test::HasFailure(); ++done) {
        update(done);
        ReportProgress(1, testing::Test::HasFailure() ? 1 : 0);
        if (done == count / 2)
            HeldAfter(done);
    }
    const Held end = HeldAfter(count);
    EXPECT_LE(end.threads, begin.threads);
    EXPECT_LE(end.descriptors, begin.descriptors);
    EXPECT_LE(end.allocated, begin.allocated + kMayGrowAllocated);
    EXPECT_LE(end.resident, begin.resident + kMayGrowResident);
}

// tools/soak sets the variables.
std::uint64_t Seed() {
    return NumberFrom("TOLVANE_SOAK_SEED", 1);
}

// Every third update has no fault, the others have one or two and end with a whole update. A call
// that fails may leave something behind, so no call fails here.
TEST(Soak, OfSimulatedUpdatesWithFaultsLeavesNothing) {
    auto kinds = campaign::Chosen({}, campaign::FaultKinds());
    std::erase_if(kinds, [](const FaultKind* kind) { return kind->FailsCalls(); });
    const std::uint64_t count = NumberFrom("TOLVANE_SOAK_SIMULATED", kSimulated);
    const auto baselines = campaign::MeasureBaselines(campaign::Chosen({}, campaign::Flows()));
    const auto cases =
        campaign::Sample(baselines, kinds, 2, count, static_cast<std::uint32_t>(Seed()));
    Soak(count, [&](std::uint64_t number) {
        Case test_case = cases[number - 1];
        test_case.seed = static_cast<std::uint32_t>(number);
        test_case.faults.resize(number % 3);
        for (const std::string& finding : campaign::RunCase(test_case).findings)
            ADD_FAILURE() << campaign::ToText(test_case) << " with seed " << number << ": "
                          << finding;
    });
}

// In real threads at high speed. Each runs a flow and updates a healthy DVR in the end.
TEST(Soak, OfFreeRunningUpdatesLeavesNothing) {
    const std::uint64_t count = NumberFrom("TOLVANE_SOAK_FREE", kFreeRunning);
    Soak(count, [](std::uint64_t number) {
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
