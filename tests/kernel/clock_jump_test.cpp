#include <atomic>

#include "tests/support/platform_test.h"

namespace tests {
namespace {

EVERY_MODE_SUITE(ClockJump);

TEST_P(ClockJump, MakesEverythingDueThatItPasses) {
    Platform platform{GetParam().options};
    std::vector<int> order;
    // The waiting thread may be awake before the jump has returned.
    std::atomic<kernel::Time> jumped_to{};
    const auto expect_just_jumped = [&] {
        EXPECT_GE(kernel::Now(), jumped_to.load());
        EXPECT_LT(kernel::Now(), jumped_to.load() + 2min);
    };
    for (const int minute : {3, 1, 2, 20})
        kernel::After(std::chrono::minutes(minute), [&, minute] {
            order.push_back(minute);
            expect_just_jumped();
        });
    kernel::After(1s, [&] {
        EXPECT_FALSE(kernel::JumpClock(-1us));
        EXPECT_FALSE(kernel::JumpClock(kernel::kLongestJump + 1us));
        const DWORD before = GetTickCount();
        jumped_to = kernel::Now() + 10min;
        EXPECT_TRUE(kernel::JumpClock(10min));
        EXPECT_GE(GetTickCount() - before, 600000U);
        EXPECT_EQ(order.size(), 0U) << "no action runs inside another";
    });
    platform.Run(
        [&] {
            Sleep(8 * 60000);
            expect_just_jumped();
            Sleep(100);
        },
        1h);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

// The thread with the earlier deadline runs first, for any seed.
TEST(SimulatedClockJump, TimesThreadsOutInOrderOfTime) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
        OnPlatform(
            [&] {
                std::vector<DWORD> order;
                kernel::After(1s, [] { kernel::JumpClock(9min); });
                Crew crew;
                for (const DWORD minutes : {4U, 2U, 5U, 1U, 3U})
                    crew.Start([&, minutes] {
                        Sleep(minutes * 60000);
                        order.push_back(minutes);
                    });
                crew.Join();
                EXPECT_EQ(order, (std::vector<DWORD>{1, 2, 3, 4, 5})) << "seed " << seed;
            },
            {.seed = seed});
}

// The tick count wraps to zero after 49.7 days; timers and waits are not affected.
TEST(TickCount, WrapsUnderTimersAndWaits) {
    constexpr kernel::Time kWrap = std::chrono::milliseconds(std::uint64_t{1} << 32);
    OnPlatform(
        [] {
            const DWORD start = GetTickCount();
            const UINT_PTR timer = SetTimer(nullptr, 0, 250, nullptr);
            MSG message{};
            EXPECT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
            EXPECT_EQ(GetTickCount() - start, 250U);
            EXPECT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
            EXPECT_LT(GetTickCount(), start);
            EXPECT_EQ(GetTickCount() - start, 500U);
            KillTimer(nullptr, timer);
        },
        {.start = kWrap - 300ms});
}

}  // namespace
}  // namespace tests
