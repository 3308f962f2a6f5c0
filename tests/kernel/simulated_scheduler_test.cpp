#include <algorithm>
#include <set>

#include "tests/support/platform_test.h"

namespace tests {
namespace {

PLATFORM_TEST(SimulatedScheduler, MoreUrgentThreadRunsBeforeTheNextCall) {
    std::string order;
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    Crew crew;
    for (const int priority : {5, 0, 2, THREAD_PRIORITY_NORMAL})
        crew.Start(
            [&order, event, priority] {
                WaitForSingleObject(event, INFINITE);
                order += std::to_string(priority) + ' ';
            },
            priority);
    Sleep(1);
    SetEvent(event);
    GetTickCount();
    order += "waker ";
    SetThreadPriority(GetCurrentThread(), 4);
    GetTickCount();
    order += "lowered ";
    crew.Join();
    CloseHandle(event);
    EXPECT_EQ(order, "0 2 waker 3 lowered 5 ");
}

// Equal seeds give equal histories, different seeds different ones; only preemption interleaves
// threads that never wait.
TEST(SimulatedScheduler, IsDeterminedByItsSeed) {
    const auto history = [](std::uint64_t seed, bool preempt, bool waits) {
        std::string order;
        const auto run = [&] {
            Crew crew;
            for (const char name : {'a', 'b', 'c'})
                crew.Start([&, name] {
                    for (int call = 0; call < 100; ++call) {
                        order += name;
                        waits ? Sleep(1) : void(GetTickCount());
                    }
                });
        };
        OnPlatform(run, {.seed = seed, .preempt = preempt});
        return order;
    };
    for (const bool preempt : {false, true}) {
        std::set<std::string> histories;
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            histories.insert(history(seed, preempt, true));
            EXPECT_EQ(histories.count(history(seed, preempt, true)), 1U) << "seed " << seed;
        }
        EXPECT_GT(histories.size(), 5U) << "preempt " << preempt;
        std::string order = history(1, preempt, false);
        order.erase(std::unique(order.begin(), order.end()), order.end());
        EXPECT_EQ(order.size() > 3, preempt) << order;
    }
}

TEST(SimulatedScheduler, UnitWithEveryThreadBlockedIsReportedAsStalled) {
    Platform platform;
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const auto thread =
        kernel::StartThread([=] { return DWORD{WaitForSingleObject(event, INFINITE)}; });
    const auto ended = [&] { return thread->ended; };
    EXPECT_FALSE(kernel::RunHostThread(ended));
    SetEvent(event);
    EXPECT_TRUE(kernel::RunHostThread(ended));
    EXPECT_FALSE(kernel::RunHostThread([] { return false; })) << "no thread is left";
    CloseHandle(event);
}

}  // namespace
}  // namespace tests
