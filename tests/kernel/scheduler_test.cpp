#include <algorithm>
#include <atomic>
#include <set>

#include "tests/support/platform_test.h"

namespace tests {
namespace {

class Scheduler : public InEveryMode {
  protected:
    Platform platform{GetParam().options};
    std::string order;
};
INSTANTIATE_IN_EVERY_MODE(Scheduler);

TEST_P(Scheduler, HostThreadsActionsRunInOrderOfTimeThenOfArrival) {
    const kernel::Time start = kernel::Now();
    const auto plan = [&](kernel::Duration from_start, const char* what) {
        return kernel::At(start + from_start, [this, what] { order += what; });
    };
    plan(20ms, "late ");
    plan(10ms, "first ");
    plan(10ms, "second ");
    kernel::At(start - 10ms, [&] {
        order += "overdue ";
        plan(0ms, "nested ");
    });
    const kernel::EventId cancelled = plan(15ms, "cancelled ");
    for (const kernel::EventId id : {cancelled, cancelled, kernel::EventId{987654}})
        kernel::Cancel(id);
    platform.RunFor(20ms);
    EXPECT_EQ(order, "overdue nested first second late ");
}

// The host thread may make calls that do not wait; these must not start another action in the
// middle of the running one. When it does wait, threads run and time passes.
TEST_P(Scheduler, HostThreadStartsNoOtherActionUnlessItWaits) {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    kernel::After({}, [&] {
        EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
        SetEvent(event);
        EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
        order += "first ";
    });
    kernel::After({}, [&] { order += "other "; });
    platform.RunFor(1ms);
    EXPECT_EQ(order, "first other ");

    const kernel::Time start = kernel::Now();
    EXPECT_EQ(WaitForSingleObject(event, 10), WAIT_TIMEOUT);
    Crew crew([=] {
        Sleep(30);
        SetEvent(event);
    });
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    EXPECT_GE(kernel::Now(), start + 40ms);
    crew.Join();
    CloseHandle(event);
}

TEST_P(Scheduler, ClockJumpMakesEverythingDueThatItPasses) {
    const bool free_running = GetParam().options.mode == kernel::Mode::kFreeRunning;
    std::vector<int> actions;
    for (const int minute : {3, 1, 2, 50})
        kernel::After(std::chrono::minutes(minute), [&, minute] { actions.push_back(minute); });
    kernel::After(1s, [&] {
        EXPECT_FALSE(kernel::JumpClock(-1us));
        EXPECT_FALSE(kernel::JumpClock(kernel::kLongestJump + 1us));
        const DWORD before = GetTickCount();
        EXPECT_TRUE(kernel::JumpClock(10min));
        EXPECT_GE(GetTickCount() - before, 600000U);
        EXPECT_EQ(actions.size(), 0U) << "no action runs inside another";
    });
    std::vector<DWORD> awake;
    const auto run = [&] {
        const DWORD start = GetTickCount();
        Crew crew;
        for (const DWORD minutes : {4U, 2U, 5U, 1U, 3U})
            crew.Start([&, minutes] {
                Sleep(minutes * 60000);
                const kernel::KernelLock lock = kernel::LockKernel();
                awake.push_back(minutes);
            });
        Sleep(8 * 60000);
        EXPECT_GE(GetTickCount() - start, 600000U);
        // On a busy host the jump may come before the threads sleep.
        EXPECT_TRUE(free_running || GetTickCount() - start < 1000000U);
    };
    platform.Run(run, 1h);
    platform.RunFor(1ms);
    EXPECT_EQ(actions, (std::vector{1, 2, 3}));
    // Real threads wake in any order.
    if (free_running)
        std::ranges::sort(awake);
    EXPECT_EQ(awake, (std::vector<DWORD>{1, 2, 3, 4, 5}));
}

// The host thread must not miss a wake between its check and its wait. It checks again every 50 ms
// anyway, which would hide a missed wake; a loaded host may be slow once, not every time.
TEST(FreeRunning, HostThreadMissesNoWake) {
    Platform platform({.mode = kernel::Mode::kFreeRunning});
    kernel::Duration shortest = kernel::kNever;
    for (int attempt = 0; attempt < 5; ++attempt) {
        bool asked = false;
        const kernel::Time start = kernel::Now();
        EXPECT_TRUE(kernel::RunHostThread([&] {
            if (std::exchange(asked, true))
                return true;
            kernel::KernelLock lock = kernel::LockKernel();
            kernel::Wake(lock);
            return false;
        }));
        shortest = std::min(shortest, kernel::Now() - start);
    }
    EXPECT_LT(shortest, 40ms);
}

// While the clock is paused, no wait ends and no action comes due; what is due already still runs.
TEST(FreeRunning, PausedTimeStandsForThreadsAndActions) {
    Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = 1000});
    std::atomic<bool> slept = false;
    bool late = false;
    bool due = false;
    const auto sleeps = [&] {
        Sleep(2000);
        slept = true;
    };
    EXPECT_TRUE(kernel::PauseClock());
    const kernel::Time paused = kernel::Now();
    kernel::After(2s, [&] { late = true; });
    const HANDLE thread = kernel::OpenHandle(kernel::StartThread(
        [&] {
            sleeps();
            return DWORD{0};
        },
        THREAD_PRIORITY_NORMAL));
    // Longer on the host than either would take.
    int calls = 0;
    kernel::RunHostThread([&] {
        kernel::At(paused, [&] { due = true; });
        return ++calls > 20000;
    });
    EXPECT_TRUE(kernel::ClockPaused());
    EXPECT_EQ(kernel::Now(), paused);
    EXPECT_TRUE(due);
    EXPECT_FALSE(late);
    EXPECT_FALSE(slept);
    EXPECT_TRUE(kernel::SetClockSpeed(500));
    EXPECT_EQ(kernel::Now(), paused) << "a change of speed does not resume";
    EXPECT_TRUE(kernel::JumpClock(1s));
    EXPECT_EQ(kernel::Now(), paused + 1s);
    EXPECT_TRUE(kernel::ResumeClock());
    kernel::RunHostThread([&] { return late && slept; });
    EXPECT_GE(kernel::Now(), paused + 2s);
    EXPECT_EQ(kernel::ClockSpeed(), 500);
    CloseHandle(thread);
}

// The tick count wraps to zero after 49.7 days; timers and waits are not affected.
TEST(TickCount, WrapsUnderTimersAndWaits) {
    constexpr kernel::Time kWrap = std::chrono::milliseconds(std::uint64_t{1} << 32);
    const auto run = [] {
        const DWORD start = GetTickCount();
        const UINT_PTR timer = SetTimer(nullptr, 0, 250, nullptr);
        for (const DWORD passed : {250U, 500U}) {
            MSG message{};
            EXPECT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
            EXPECT_EQ(GetTickCount() - start, passed);
        }
        EXPECT_LT(GetTickCount(), start);
        KillTimer(nullptr, timer);
    };
    OnPlatform(run, {.start = kWrap - 300ms});
}

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
    const auto history = [](std::uint64_t seed, bool preempt) {
        std::string order;
        const auto run = [&] {
            Crew crew;
            for (const char name : {'a', 'b', 'c'})
                crew.Start([&, name] {
                    for (int call = 0; call < 100; ++call) {
                        order += name;
                        GetTickCount();
                    }
                });
        };
        OnPlatform(run, {.seed = seed, .preempt = preempt});
        return order;
    };
    for (const bool preempt : {false, true}) {
        std::set<std::string> histories;
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            const std::string order = history(seed, preempt);
            EXPECT_EQ(history(seed, preempt), order) << "seed " << seed;
            EXPECT_EQ(order.starts_with(std::string(100, order[0])), !preempt) << order;
            histories.insert(order);
        }
        EXPECT_GT(histories.size(), preempt ? 9U : 2U);
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
