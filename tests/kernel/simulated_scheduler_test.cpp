#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;
using tests::Crew;
using tests::Platform;

TEST(SimulatedScheduler, TimePassesExactlyAndOnlyWhileAllWait) {
    Platform platform;
    platform.Run(
        [] {
            EXPECT_EQ(GetTickCount(), 20000U) << "the unit was switched on 20 s ago";
            const HANDLE never = CreateEventW(nullptr, FALSE, FALSE, nullptr);
            for (const DWORD duration : {0U, 1U, 17U, 1000U, 12U * 60 * 60 * 1000}) {
                const kernel::Time start = kernel::Now();
                Sleep(duration);
                EXPECT_EQ(kernel::Now() - start, std::chrono::milliseconds(duration));
                EXPECT_EQ(WaitForSingleObject(never, duration), WAIT_TIMEOUT);
                EXPECT_EQ(kernel::Now() - start, 2 * std::chrono::milliseconds(duration));
            }
            CloseHandle(never);
        },
        std::chrono::hours(48));
}

// Who ran, in order, when threads of these priorities were let go at once.
std::string OrderOfRelease(std::uint64_t seed, const std::vector<int>& priorities) {
    Platform platform({.seed = seed});
    std::string order;
    platform.Run([&] {
        const HANDLE gate = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        Crew crew;
        for (std::size_t index = 0; index < priorities.size(); ++index)
            crew.Start(
                [&order, gate, index] {
                    WaitForSingleObject(gate, INFINITE);
                    order += static_cast<char>('a' + index);
                },
                priorities[index]);
        Sleep(1);
        SetEvent(gate);
        crew.Join();
        CloseHandle(gate);
    });
    return order;
}

TEST(SimulatedScheduler, UrgentThreadsGoFirstAndTheSeedChoosesAmongEquals) {
    std::set<std::string> orders;
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        EXPECT_EQ(OrderOfRelease(seed, {5, 0, 3, 7, 2}), "becad");
        const std::string order = OrderOfRelease(seed, {3, 3, 3});
        EXPECT_EQ(OrderOfRelease(seed, {3, 3, 3}), order) << "seed " << seed;
        orders.insert(order);
    }
    EXPECT_EQ(orders.size(), 6U) << "twenty seeds find all orders of three";
}

TEST(SimulatedScheduler, MoreUrgentThreadRunsBeforeTheNextCall) {
    Platform platform;
    std::string order;
    platform.Run([&] {
        const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        Crew crew;
        for (const int priority : {THREAD_PRIORITY_ABOVE_NORMAL, THREAD_PRIORITY_NORMAL})
            crew.Start(
                [&order, event, priority] {
                    WaitForSingleObject(event, INFINITE);
                    order += priority == THREAD_PRIORITY_NORMAL ? "equal " : "urgent ";
                },
                priority);
        Sleep(1);
        SetEvent(event);
        GetTickCount();
        order += "waker ";
        SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_LOWEST);
        GetTickCount();
        order += "lowered";
        crew.Join();
        CloseHandle(event);
    });
    EXPECT_EQ(order, "urgent waker equal lowered");
}

// What three busy threads of one priority did, and when.
std::wstring History(const kernel::Options& options) {
    Platform platform(options);
    platform.Run([&] {
        CRITICAL_SECTION section;
        InitializeCriticalSection(&section);
        const HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
        Crew crew;
        for (int name = 0; name < 3; ++name)
            crew.Start([&section, event, name] {
                for (int round = 0; round < 10; ++round) {
                    EnterCriticalSection(&section);
                    NKDbgPrintfW(L"%d:%d at %u\r\n", name, round, GetTickCount());
                    LeaveCriticalSection(&section);
                    WaitForSingleObject(event, 5);
                    SetEvent(event);
                    if (round % 3 == name)
                        Sleep(static_cast<DWORD>(round));
                }
            });
        crew.Join();
        CloseHandle(event);
        DeleteCriticalSection(&section);
    });
    return platform.board.debug_output();
}

TEST(SimulatedScheduler, SameSeedSameHistory) {
    for (const bool preempt : {false, true}) {
        std::set<std::wstring> histories;
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            const kernel::Options options{.seed = seed, .preempt = preempt};
            const std::wstring history = History(options);
            EXPECT_EQ(std::count(history.begin(), history.end(), L'\n'), 30);
            EXPECT_TRUE(History(options) == history) << "seed " << seed << " preempt " << preempt;
            histories.insert(history);
        }
        EXPECT_GT(histories.size(), 5U) << "preempt " << preempt;
    }
}

TEST(SimulatedScheduler, OnlyPreemptionInterleavesThreadsThatNeverWait) {
    for (const bool preempt : {false, true}) {
        Platform platform({.preempt = preempt});
        std::string order;
        platform.Run([&] {
            Crew crew;
            for (const char name : {'a', 'b'})
                crew.Start([&order, name] {
                    for (int call = 0; call < 100; ++call) {
                        order += name;
                        GetTickCount();
                    }
                });
        });
        order.erase(std::unique(order.begin(), order.end()), order.end());
        EXPECT_EQ(order.size() > 2, preempt) << order;
    }
}

TEST(SimulatedScheduler, UnitWithEveryThreadBlockedIsReportedAsStalled) {
    Platform platform;
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    bool ended = false;
    const auto thread = kernel::StartThread([&] {
        WaitForSingleObject(event, INFINITE);
        ended = true;
        return DWORD{0};
    });
    EXPECT_FALSE(kernel::RunHardware([&] { return ended; }));
    SetEvent(event);
    EXPECT_TRUE(kernel::RunHardware([&] { return ended; }));
    EXPECT_FALSE(kernel::RunHardware([] { return false; })) << "nobody is left at all";
    CloseHandle(event);
}

}  // namespace
