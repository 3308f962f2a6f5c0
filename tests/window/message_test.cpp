#include "tests/window/test_window.h"

namespace tests {
namespace {

const TestWindow::Handler kPaints = On(WM_PAINT, [](HWND handle, WPARAM) {
    PAINTSTRUCT paint{};
    BeginPaint(handle, &paint);
    return EndPaint(handle, &paint);
});

PLATFORM_TEST(Retrieval, SentBeforePostedBeforeTouchBeforeQuitBeforePaintBeforeTimer) {
    TestWindow target(kPaints);
    target.Show();
    HandleWaiting();
    target.Forget();
    SetTimer(target, 1, 10, NULL);
    Sleep(10);
    InvalidateRect(target, NULL, FALSE);
    PostQuitMessage(7);
    window::TouchScreen(Touch::kDown, 5, 5);
    PostMessageW(target, kPosted, 0, 0);
    const Crew peer([&] { SendMessageW(target, kSent, 0, 0); });
    Sleep(1);
    for (const UINT expected :
         {kPosted, UINT{WM_LBUTTONDOWN}, UINT{WM_QUIT}, UINT{WM_PAINT}, UINT{WM_TIMER}}) {
        MSG message{};
        EXPECT_EQ(GetMessageW(&message, NULL, 0, 0), expected != WM_QUIT);
        EXPECT_EQ(message.message, expected);
        EXPECT_TRUE(expected != WM_QUIT || message.wParam == 7U);
        DispatchMessageW(&message);
    }
    EXPECT_EQ(target.Order({kSent, kPosted}), (Numbers{kSent, kPosted}));
}

PLATFORM_TEST(Retrieval, FilterTakesMatchingMessagesAndLeavesTheRestInOrder) {
    const TestWindow first, second;
    PostMessageW(first, kPosted, 1, 0);
    PostMessageW(second, kPosted, 2, 0);
    PostMessageW(first, kSent, 3, 0);
    PostMessageW(NULL, kPosted, 4, 0);
    const auto expect = [](WPARAM expected, HWND window, UINT lowest = 0, UINT highest = 0) {
        for (const UINT flags : {PM_NOREMOVE, PM_NOREMOVE, PM_REMOVE}) {
            MSG message{};
            EXPECT_EQ(PeekMessageW(&message, window, lowest, highest, flags), expected != 0);
            EXPECT_EQ(message.wParam, expected);
        }
    };
    expect(0, NULL, WM_USER, WM_USER);
    expect(3, NULL, kSent, kSent);
    expect(2, second);
    expect(4, reinterpret_cast<HWND>(INT_PTR{-1}));  // of the thread alone
    expect(1, NULL);
    expect(0, NULL);
}

PLATFORM_TEST(Retrieval, FilterWindowThatIsDestroyedIsAnErrorAlsoWhileWaiting) {
    MSG message{};
    const TestWindow target(On(kSent, [](HWND handle, WPARAM) { return !DestroyWindow(handle); }));
    const Crew peer([&] {
        Sleep(50);
        SendMessageW(target, kSent, 0, 0);
    });
    for (const HWND each : {kNoWindow, target.handle()})
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE,
                    [&] { return GetMessageW(&message, each, 0, 0) != -1; });
}

PLATFORM_TEST(Queues, HoldTenThousandMessages) {
    const TestWindow target;
    int posted = 0;
    while (posted < 20000 && PostMessageW(target, kPosted, 0, 0))
        ++posted;
    EXPECT_EQ(posted, 10000);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
    HandleWaiting();
    // Notifications from another thread beyond the limit are lost.
    Crew([&] {
        for (int x = 1; x <= 10001; ++x)
            SetWindowPos(target, NULL, x % 2, 0, 9, 9, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOSIZE);
    });
    HandleWaiting();
    EXPECT_EQ(target.Count(WM_WINDOWPOSCHANGED), 10000U);
}

TEST(Waiting, WakesForItsKindsOfMessagesAndForHandles) {
    const auto post = [](HWND target) { PostMessageW(target, kPosted, 0, 0); };
    const auto arm = [](HWND target) { SetTimer(target, 1, 10, NULL); };
    const auto notify = [](HWND target) { SetWindowPos(target, NULL, 1, 1, 0, 0, SWP_NOSIZE); };
    const struct {
        const char* name;
        DWORD mask;
        bool wakes;
        std::function<void(HWND)> cause;
    } cases[] = {
        {"posted", QS_POSTMESSAGE, true, post},
        {"posted, not wanted", QS_SENDMESSAGE, false, post},
        {"sent", QS_SENDMESSAGE, true, notify},
        {"sent, not wanted", QS_POSTMESSAGE, false, notify},
        {"timer", QS_ALLINPUT, true, arm},
        {"timer, not wanted", QS_ALLINPUT & ~QS_TIMER, false, arm},
        {"touch", QS_INPUT, true, [](HWND) { window::TouchScreen(Touch::kUp, 5, 5); }},
        {"paint", QS_PAINT, true, [](HWND h) { InvalidateRect(h, NULL, FALSE); }},
        {"nothing", QS_ALLINPUT, false, [](HWND) {}},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        const TestWindow target(kPaints);
        target.Show();
        HandleWaiting();
        const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
        const auto wait = [&](DWORD count, BOOL all, DWORD limit) {
            return MsgWaitForMultipleObjects(count, &event, all, limit, each.mask);
        };
        const Crew peer([&] {
            Sleep(20);
            each.cause(target);
        });
        EXPECT_EQ(wait(1, FALSE, 200), each.wakes ? WAIT_OBJECT_0 + 1 : WAIT_TIMEOUT);
        SetEvent(event);
        EXPECT_EQ(wait(1, FALSE, 200), WAIT_OBJECT_0);
        CloseHandle(event);
        HandleWaiting();
        ExpectFails(ERROR_INVALID_HANDLE, [&] { return wait(1, FALSE, 0) != WAIT_FAILED; });
        ExpectFails(ERROR_INVALID_PARAMETER, [&] { return wait(0, TRUE, 0) != WAIT_FAILED; });
    });
}

EVERY_MODE_SUITE(Sending);

EVERY_MODE_TEST(Sending, RunsOnTheWindowsThreadAndAWaitingSenderHandlesItsOwnMessages) {
    const kernel::Thread* const own_thread = &kernel::CurrentThread();
    const TestWindow own(On(kSent, [&](HWND, WPARAM wparam) {
        EXPECT_EQ(&kernel::CurrentThread(), own_thread);
        return static_cast<LRESULT>(wparam);
    }));
    const WindowThread other({}, On(kSent, [&](HWND, WPARAM wparam) {
                                 EXPECT_NE(&kernel::CurrentThread(), own_thread);
                                 return SendMessageW(own, kSent, wparam + 1, 0) + 1;
                             }));
    EXPECT_EQ(SendMessageW(own, kSent, 5, 0), 5);
    for (WPARAM count = 0; count < 200; ++count)
        ASSERT_EQ(SendMessageW(other, kSent, count, 0), static_cast<LRESULT>(count + 2));
}

TEST(LostMessage, FailsItsSenderWhenTheWindowIsDestroyed) {
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
            EXPECT_FALSE(StateOf(*target));
        });
}

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
    const auto two = [](HWND target) {
        SetTimer(target, 2, 90, NULL);
        Sleep(120);
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
        {"two due at once",
         0,
         two,
         {{2, 0}, {1, 0}, {2, 60}, {1, 80}, {2, 150}, {1, 180}, {2, 240}}},
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

PLATFORM_TEST(Timer, HasAPeriodOfTenMillisecondsAtLeast) {
    const TestWindow target;
    SetTimer(target, 1, 0, NULL);
    const Ticks ticks = Collect();
    ASSERT_EQ(ticks.size(), 25U);
    EXPECT_EQ(ticks.front(), std::pair(WPARAM{1}, DWORD{10}));
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
