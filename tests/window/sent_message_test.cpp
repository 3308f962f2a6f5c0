#include "tests/window/test_window.h"

namespace tests {
namespace {

PLATFORM_TEST(Sending, RunsOnTheWindowsThreadAndAWaitingSenderAnswersWhatIsSentToIt) {
    DWORD own_thread = 0;
    const TestWindow own(On(kSent, [&](HWND, WPARAM wparam) {
        own_thread = GetCurrentThreadId();
        return static_cast<LRESULT>(wparam);
    }));
    DWORD other_thread = 0;
    const WindowThread other({}, On(kSent, [&](HWND, WPARAM wparam) {
                                 other_thread = GetCurrentThreadId();
                                 Sleep(100);
                                 return SendMessageW(own, kSent, wparam + 1, 0) + 1;
                             }));
    EXPECT_EQ(SendMessageW(own, kSent, 5, 0), 5);
    EXPECT_EQ(SendMessageW(other, kSent, 20, 0), 22);
    EXPECT_EQ(own_thread, GetCurrentThreadId());
    EXPECT_EQ(other_thread, GetWindowThreadProcessId(other, NULL));
}

TEST(Sending, WhoeverWaitsForAWindowThatGoesLearnsIt) {
    for (const bool by_its_threads_end : {false, true})
        OnPlatform([=] {
            std::optional<TestWindow> target;
            const DWORD start = GetTickCount();
            const Crew peer([&] {
                target.emplace();
                Sleep(100);
                if (by_its_threads_end)
                    return;
                DestroyWindow(*target);
                Sleep(100);
            });
            Sleep(50);
            ExpectFails(ERROR_INVALID_WINDOW_HANDLE,
                        [&] { return SendMessageW(*target, kSent, 0, 0); });
            EXPECT_EQ(GetTickCount() - start, 100U);
            EXPECT_FALSE(IsWindow(*target));
        });
}

TEST(Sending, RepliesCrossBothWaysFreeRunning) {
    const auto run = [] {
        const TestWindow own(On(kSent, [](HWND, WPARAM wparam) { return LRESULT(wparam); }));
        const WindowThread other({}, On(kSent, [&](HWND, WPARAM wparam) {
                                     return SendMessageW(own, kSent, wparam, 0);
                                 }));
        for (WPARAM count = 0; count < 200; ++count)
            ASSERT_EQ(SendMessageW(other, kSent, count, 0), LRESULT(count));
    };
    OnPlatform(run, {.mode = kernel::Mode::kFreeRunning, .speed = 50});
}

}  // namespace
}  // namespace tests
