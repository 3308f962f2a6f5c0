#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

namespace {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;
using tests::Platform;

class ClockJump : public tests::InEveryMode {};

TEST_P(ClockJump, MakesEverythingDueThatItPasses) {
    Platform platform{GetParam().options};
    std::vector<int> order;
    kernel::Time ran_at{};
    // The waiting thread may be awake before the jump has returned.
    std::atomic<kernel::Time> jumped_to{};
    for (const int minute : {3, 1, 2, 20})
        kernel::After(std::chrono::minutes(minute), [&, minute] {
            order.push_back(minute);
            ran_at = kernel::Now();
        });
    DWORD before = 0;
    kernel::After(1s, [&] {
        before = GetTickCount();
        jumped_to = kernel::Now() + 10min;
        EXPECT_TRUE(kernel::JumpClock(10min));
        EXPECT_GE(GetTickCount() - before, 600000U);
        EXPECT_EQ(order.size(), 0U) << "no action runs in the middle of another";
    });
    platform.Run(
        [&] {
            const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
            EXPECT_EQ(WaitForSingleObject(event, 8 * 60000), WAIT_TIMEOUT);
            EXPECT_GE(kernel::Now(), jumped_to.load());
            EXPECT_LT(kernel::Now(), jumped_to.load() + 2min) << "and not eight minutes later";
            Sleep(100);
            CloseHandle(event);
        },
        1h);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
    EXPECT_GE(ran_at, jumped_to.load());
    EXPECT_LT(ran_at, jumped_to.load() + 2min);
}

TEST_P(ClockJump, RefusesToGoBackOrTooFar) {
    Platform platform{GetParam().options};
    const kernel::Time before = kernel::Now();
    EXPECT_FALSE(kernel::JumpClock(-1us));
    EXPECT_FALSE(kernel::JumpClock(kernel::kLongestJump + 1us));
    EXPECT_LT(kernel::Now(), before + 1min);
    EXPECT_TRUE(kernel::JumpClock(kernel::kLongestJump));
    EXPECT_TRUE(kernel::JumpClock({}));
    EXPECT_GE(kernel::Now(), before + kernel::kLongestJump);
}

INSTANTIATE_IN_EVERY_MODE(ClockJump);

// Whoever waited for the earlier time goes first, whatever the seed.
TEST(SimulatedClockJump, TimesThreadsOutInOrderOfTime) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        Platform platform({.seed = seed});
        std::vector<DWORD> order;
        kernel::After(1s, [] { kernel::JumpClock(10min); });
        platform.Run(
            [&] {
                tests::Crew crew;
                for (const DWORD minutes : {4U, 2U, 5U, 1U, 3U})
                    crew.Start([&, minutes] {
                        Sleep(minutes * 60000);
                        order.push_back(minutes);
                    });
                crew.Join();
            },
            1h);
        EXPECT_EQ(order, (std::vector<DWORD>{1, 2, 3, 4, 5})) << "seed " << seed;
    }
}

// A timer that was passed many times over comes once, and goes on with its beat.
TEST(SimulatedClockJump, MakesATimerDueOnce) {
    Platform platform;
    platform.Run([] {
        const UINT_PTR timer = SetTimer(nullptr, 0, 1000, nullptr);
        const DWORD start = GetTickCount();
        kernel::After(500ms, [] { kernel::JumpClock(10s); });
        std::vector<DWORD> beats;
        while (beats.size() < 3) {
            MSG message{};
            GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER);
            beats.push_back(GetTickCount() - start);
        }
        EXPECT_EQ(beats, (std::vector<DWORD>{10500, 11000, 12000}));
        KillTimer(nullptr, timer);
    });
}

// The tick count begins anew at zero after 49.7 days; nothing else notices.
TEST(TickCount, WrapsUnderTimersAndWaits) {
    constexpr kernel::Time kWrap = std::chrono::milliseconds(std::uint64_t{1} << 32);
    for (const kernel::Mode mode : {kernel::Mode::kSimulated, kernel::Mode::kFreeRunning}) {
        Platform platform({.mode = mode, .speed = 100, .start = kWrap - 300ms});
        platform.Run([&] {
            const DWORD start = GetTickCount();
            EXPECT_GT(start, 0xFFFFFE00U);
            const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
            const UINT_PTR timer = SetTimer(nullptr, 0, 250, nullptr);
            for (DWORD beat = 1; beat <= 3; ++beat) {
                MSG message{};
                EXPECT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
                EXPECT_GE(GetTickCount() - start, 250 * beat);
            }
            EXPECT_LT(GetTickCount(), start);
            EXPECT_EQ(WaitForSingleObject(event, 200), WAIT_TIMEOUT);
            Sleep(200);
            EXPECT_GE(GetTickCount() - start, 1150U);
            if (mode == kernel::Mode::kSimulated) {
                EXPECT_EQ(GetTickCount() - start, 1150U);
            }
            KillTimer(nullptr, timer);
            CloseHandle(event);
        });
    }
}

}  // namespace
