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
    kernel::After(1s, [&] {
        EXPECT_FALSE(kernel::JumpClock(-1us));
        EXPECT_FALSE(kernel::JumpClock(kernel::kLongestJump + 1us));
        const DWORD before = GetTickCount();
        jumped_to = kernel::Now() + 10min;
        EXPECT_TRUE(kernel::JumpClock(10min));
        EXPECT_GE(GetTickCount() - before, 600000U);
        EXPECT_EQ(order.size(), 0U) << "no action runs in the middle of another";
    });
    platform.Run(
        [&] {
            Sleep(8 * 60000);
            EXPECT_GE(kernel::Now(), jumped_to.load());
            EXPECT_LT(kernel::Now(), jumped_to.load() + 2min) << "and not eight minutes later";
            Sleep(100);
        },
        1h);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
    EXPECT_GE(ran_at, jumped_to.load());
    EXPECT_LT(ran_at, jumped_to.load() + 2min);
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
            },
            1h);
        EXPECT_EQ(order, (std::vector<DWORD>{1, 2, 3, 4, 5})) << "seed " << seed;
    }
}

// The tick count begins anew at zero after 49.7 days; nothing else notices.
TEST(TickCount, WrapsUnderTimersAndWaits) {
    constexpr kernel::Time kWrap = std::chrono::milliseconds(std::uint64_t{1} << 32);
    Platform platform({.start = kWrap - 300ms});
    platform.Run([] {
        const DWORD start = GetTickCount();
        const UINT_PTR timer = SetTimer(nullptr, 0, 250, nullptr);
        for (DWORD beat = 1; beat <= 3; ++beat) {
            MSG message{};
            EXPECT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
            EXPECT_EQ(GetTickCount() - start, 250 * beat);
        }
        EXPECT_LT(GetTickCount(), start);
        Sleep(400);
        EXPECT_EQ(GetTickCount() - start, 1150U);
        KillTimer(nullptr, timer);
    });
}

}  // namespace
