#include "tests/window/test_window.h"

namespace tests {
namespace {

// A timer's id, and the milliseconds after which it came.
using Ticks = std::vector<std::pair<WPARAM, DWORD>>;

// The timer messages fetched within 250 ms from now.
Ticks Collect() {
    const DWORD start = GetTickCount();
    const auto passed = [=] { return GetTickCount() - start; };
    Ticks ticks;
    while (passed() <= 250 &&
           MsgWaitForMultipleObjects(0, NULL, FALSE, 250 - passed(), QS_TIMER) == WAIT_OBJECT_0) {
        MSG message{};
        if (PeekMessageW(&message, NULL, WM_TIMER, WM_TIMER, PM_REMOVE))
            ticks.emplace_back(message.wParam, passed());
    }
    return ticks;
}

TEST(Timer, IsDueEveryPeriodFromItsLastArmingUntilItIsKilled) {
    const auto arm = [](UINT_PTR id, UINT period) {
        return [=](HWND target) { EXPECT_EQ(SetTimer(target, id, period, NULL), id); };
    };
    const auto kill = [](HWND target) {
        EXPECT_TRUE(KillTimer(target, 1));
        EXPECT_FALSE(KillTimer(target, 1));
    };
    const auto by_another_thread = [](auto act) {
        return [=](HWND target) { Crew([=] { act(target); }); };
    };
    const struct {
        const char* name;
        DWORD after;  // an arming of timer 1 with 100 ms
        std::function<void(HWND)> act;
        Ticks expected;  // from then
    } cases[] = {
        {"left alone", 0, [](HWND) {}, {{1, 100}, {1, 200}}},
        {"missed periods are one message", 370, [](HWND) {}, {{1, 0}, {1, 30}, {1, 130}, {1, 230}}},
        {"another beside it", 0, arm(2, 150), {{1, 100}, {2, 150}, {1, 200}}},
        {"armed anew before it was due", 60, arm(1, 100), {{1, 100}, {1, 200}}},
        {"armed anew while its message waits", 130, arm(1, 100), {{1, 100}, {1, 200}}},
        {"armed anew with another period", 130, arm(1, 240), {{1, 240}}},
        {"armed by another thread", 50, by_another_thread(arm(1, 120)), {{1, 120}, {1, 240}}},
        {"killed", 50, kill, {}},
        {"killed while its message waits", 150, kill, {}},
        {"killed by another thread", 150, by_another_thread(kill), {}},
        {"its window destroyed", 150, DestroyWindow, {}},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        const TestWindow target;
        SetTimer(target, 1, 100, NULL);
        Sleep(each.after);
        each.act(target);
        EXPECT_EQ(Collect(), each.expected);
    });
}

PLATFORM_TEST(Timer, ArmedByAnotherThreadWakesAThreadThatWaitsForMessages) {
    const TestWindow target;
    SetTimer(target, 1, 5000, NULL);
    const Crew later([&] {
        Sleep(40);
        SetTimer(target, 2, 100, NULL);
    });
    const DWORD start = GetTickCount();
    MSG message{};
    EXPECT_TRUE(GetMessageW(&message, NULL, 0, 0));
    EXPECT_EQ(message.wParam, 2U);
    EXPECT_EQ(GetTickCount() - start, 140U);
}

}  // namespace
}  // namespace tests
