#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>

#include "platform/gdi/surface.h"
#include "platform/kernel/scheduler.h"
#include "tests/campaign/campaign.h"
#include "tests/support/numbers.h"
#include "tests/support/progress.h"
#include "unit/events/event_text.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;

// How many ./test runs, in parts that run side by side.
#ifdef TOLVANE_SANITIZED
constexpr std::uint64_t kSchedules = 40;
#else
constexpr std::uint64_t kSchedules = 1000;
#endif
constexpr std::uint64_t kParts = 4;

// Drawing takes most of a run and does not depend on the schedule: only these rows are drawn.
constexpr int kRows = 8;

// What each thread logged, sent to the DVR, requested from drivers and broadcast, in its order.
// Times and the order between threads may depend on the schedule, but nothing else.
using ThreadTraces = std::vector<std::vector<std::string>>;

// Schedule 0 is the usual order. In every second one, repaints of the window by other threads wait.
ThreadTraces WholeUpdate(std::uint32_t schedule) {
    unit::VirtualUnit::Options options;
    options.kernel.seed = schedule;
    options.kernel.preempt = schedule != 0;
    options.kernel.waiting_repaints = schedule % 2 == 1;
    // The tick count wraps while the DVR updates itself.
    options.kernel.start = std::chrono::milliseconds(std::uint64_t{1} << 32) - 30s;
    WizardRun run(options);
    std::map<DWORD, std::vector<std::string>> by_thread;
    {
        const auto watch = run.unit().events().Subscribe([&](const unit::TimedEvent& timed) {
            // The card's folder has another name each time.
            if (unit::IsTraced(timed.event) &&
                !std::holds_alternative<unit::CardMoved>(timed.event))
                by_thread[kernel::CurrentThread().id].push_back(unit::EventLine(timed.event));
        });
        CarDriver driver(run);
        EXPECT_EQ(campaign::RunFlow(*campaign::Named("quick", campaign::Flows()), run, driver),
                  CarDriver::End::kSuccess);
        run.Close();
    }
    ThreadTraces traces;
    for (auto& [thread, lines] : by_thread)
        traces.push_back(std::move(lines));
    std::ranges::sort(traces);
    return traces;
}

std::string FirstDifference(const ThreadTraces& usual, const ThreadTraces& other) {
    if (usual.size() != other.size())
        return "another number of threads";
    for (std::size_t thread = 0; thread < usual.size(); ++thread) {
        std::vector<std::string> a = usual[thread], b = other[thread];
        a.push_back("nothing more");
        b.push_back("nothing more");
        const auto [usually, now] = std::ranges::mismatch(a, b);
        if (usually != a.end() && now != b.end())
            return "usual: " + *usually + "\nnow:   " + *now;
    }
    return {};
}

class Schedules : public testing::TestWithParam<std::uint64_t> {
  protected:
    Schedules() { platform::gdi::Surface::KeepRows(kRows); }
    ~Schedules() override { platform::gdi::Surface::KeepRows(platform::gdi::Surface::kAllRows); }
};

// tools/schedules sets the variables.
TEST_P(Schedules, ChangeOnlyTheOrderBetweenThreads) {
    const std::uint64_t count = NumberFrom("TOLVANE_SCHEDULES", kSchedules) / kParts;
    const std::uint64_t first = NumberFrom("TOLVANE_SCHEDULES_SEED", 1) + GetParam() * count;
    const ThreadTraces usual = WholeUpdate(0);
    for (std::uint64_t schedule = first; schedule < first + count; ++schedule) {
        const std::string difference =
            FirstDifference(usual, WholeUpdate(static_cast<std::uint32_t>(schedule)));
        ReportProgress(1, difference.empty() ? 0 : 1);
        ASSERT_EQ(difference, "") << "schedule " << schedule;
    }
    std::cout << count << " schedules from " << first << ": no difference in " << usual.size()
              << " threads\n";
}

INSTANTIATE_TEST_SUITE_P(Part, Schedules, testing::Range<std::uint64_t>(0, kParts));

}  // namespace
}  // namespace tests
