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
using std::chrono::microseconds;
using std::chrono::milliseconds;
using tests::Crew;
using tests::Platform;

TEST(SimulatedScheduler, TimePassesExactlyAndOnlyWhileAllWait) {
    Platform platform;
    platform.Run(
        [] {
            EXPECT_EQ(GetTickCount(), 20000U) << "the unit was switched on 20 s ago";
            const HANDLE never = CreateEventW(nullptr, FALSE, FALSE, nullptr);
            for (const DWORD duration : {0U, 1U, 17U, 1000U, 12U * 60 * 60 * 1000}) {
                kernel::Time start = kernel::Now();
                Sleep(duration);
                EXPECT_EQ(kernel::Now() - start, milliseconds(duration)) << "Sleep";
                start = kernel::Now();
                EXPECT_EQ(WaitForSingleObject(never, duration), WAIT_TIMEOUT);
                EXPECT_EQ(kernel::Now() - start, milliseconds(duration)) << "wait";
            }
            CloseHandle(never);
        },
        std::chrono::hours(48));
}

TEST(SimulatedScheduler, SignalAtTheVeryDeadlineWins) {
    Platform platform;
    platform.Run([] {
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        kernel::After(milliseconds(50), [event] { SetEvent(event); });
        EXPECT_EQ(WaitForSingleObject(event, 50), WAIT_OBJECT_0);
        kernel::After(microseconds(50'001), [event] { SetEvent(event); });
        EXPECT_EQ(WaitForSingleObject(event, 50), WAIT_TIMEOUT);
        Sleep(1);
        CloseHandle(event);
    });
}

// Who ran, in order, when all of these were let go at once.
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
                    Sleep(1);
                },
                priorities[index]);
        Sleep(1);
        SetEvent(gate);
        Sleep(10);
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

TEST(SimulatedScheduler, UrgentThreadRunsBeforeItsWakersNextCall) {
    Platform platform;
    std::string order;
    platform.Run([&] {
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        Crew crew;
        crew.Start(
            [&] {
                WaitForSingleObject(event, INFINITE);
                order += "urgent ";
            },
            THREAD_PRIORITY_ABOVE_NORMAL);
        Sleep(1);
        SetEvent(event);
        SetLastError(0);
        GetTickCount();
        order += "waker";
        crew.Join();
        CloseHandle(event);
    });
    EXPECT_EQ(order, "urgent waker");
}

TEST(SimulatedScheduler, ChangedPriorityCountsAtOnce) {
    Platform platform;
    std::string order;
    platform.Run([&] {
        const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        Crew crew;
        crew.Start([&] {
            WaitForSingleObject(event, INFINITE);
            order += "other ";
        });
        Sleep(1);
        SetEvent(event);
        GetTickCount();
        order += "still-me ";
        SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_LOWEST);
        GetTickCount();
        order += "me";
        crew.Join();
        CloseHandle(event);
    });
    EXPECT_EQ(order, "still-me other me");
}

// What three busy threads of one priority did, and when.
std::string Trace(const kernel::Options& options) {
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
    std::string trace;
    for (const std::wstring& line : platform.board.lines())
        trace += std::string(line.begin(), line.end()) + "\n";
    return trace;
}

TEST(SimulatedScheduler, SameSeedSameHistory) {
    for (const bool preempt : {false, true}) {
        std::set<std::string> histories;
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            const kernel::Options options{.seed = seed, .preempt = preempt};
            const std::string history = Trace(options);
            EXPECT_EQ(std::count(history.begin(), history.end(), '\n'), 30);
            EXPECT_EQ(Trace(options), history) << "seed " << seed << " preempt " << preempt;
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
        int changes = 0;
        for (std::size_t index = 1; index < order.size(); ++index)
            changes += order[index] != order[index - 1];
        EXPECT_EQ(order.size(), 200U);
        if (preempt) {
            EXPECT_GT(changes, 5);
        } else {
            EXPECT_EQ(changes, 1);
        }
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
