#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "platform/kernel/scheduler.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;
using tests::Crew;
using tests::Platform;

TEST(SimulatedScheduler, MoreUrgentThreadRunsBeforeTheNextCall) {
    Platform platform;
    std::string order;
    platform.Run([&] {
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
    });
    EXPECT_EQ(order, "0 2 waker 3 lowered 5 ");
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
