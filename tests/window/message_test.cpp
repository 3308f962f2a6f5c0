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
    const HWND thread_alone = reinterpret_cast<HWND>(INT_PTR{-1});
    const struct {
        HWND window;
        UINT lowest, highest;
        WPARAM expected;
    } cases[] = {
        {NULL, WM_APP, WM_APP + 1, 0}, {NULL, kSent, kSent, 3}, {second, 0, 0, 2},
        {thread_alone, 0, 0, 4},       {NULL, 0, 0, 1},         {NULL, 0, 0, 0},
    };
    PostMessageW(first, kPosted, 1, 0);
    PostMessageW(second, kPosted, 2, 0);
    PostMessageW(first, kSent, 3, 0);
    PostMessageW(NULL, kPosted, 4, 0);
    for (const auto& each : cases)
        for (const UINT flags : {PM_NOREMOVE, PM_NOREMOVE, PM_REMOVE}) {
            MSG message{};
            EXPECT_EQ(PeekMessageW(&message, each.window, each.lowest, each.highest, flags),
                      each.expected != 0);
            EXPECT_EQ(message.wParam, each.expected);
        }
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
    TestWindow target;
    const auto post = [&] { return PostMessageW(target, kPosted, 0, 0); };
    for (int most : {10000, 1}) {
        int posted = 0;
        while (posted < 20000 && post())
            ++posted;
        EXPECT_EQ(posted, most);
        ExpectFails(ERROR_NOT_ENOUGH_QUOTA, post);
        MSG message{};
        EXPECT_TRUE(PeekMessageW(&message, NULL, 0, 0, PM_REMOVE));
    }
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

PLATFORM_TEST(Sending, RunsOnTheWindowsThreadAndAWaitingSenderHandlesItsOwnMessages) {
    const auto this_thread = [] { return &kernel::CurrentThread(); };
    const kernel::Thread* own_thread = nullptr;
    const kernel::Thread* other_thread = nullptr;
    const TestWindow own(On(kSent, [&](HWND, WPARAM wparam) {
        own_thread = this_thread();
        return static_cast<LRESULT>(wparam);
    }));
    const WindowThread other({}, On(kSent, [&](HWND, WPARAM wparam) {
                                 other_thread = this_thread();
                                 Sleep(100);
                                 return SendMessageW(own, kSent, wparam + 1, 0) + 1;
                             }));
    EXPECT_EQ(SendMessageW(own, kSent, 5, 0), 5);
    EXPECT_EQ(SendMessageW(other, kSent, 20, 0), 22);
    EXPECT_EQ(own_thread, this_thread());
    EXPECT_TRUE(other_thread && other_thread != own_thread);
}

TEST(Sending, FailsWhenTheWindowIsDestroyedMeanwhile) {
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

TEST(Sending, ResultsCrossBothWaysFreeRunning) {
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
