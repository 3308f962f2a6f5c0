#include "tests/window/test_window.h"

namespace tests {
namespace {

const TestWindow::Handler kValidate =
    On(WM_PAINT, [](HWND handle, WPARAM) { return ValidateRect(handle, NULL) - 1; });

PLATFORM_TEST(Retrieval, SentBeforePostedBeforeTouchBeforeQuitBeforePaintBeforeTimer) {
    TestWindow target(kValidate);
    target.Show();
    HandleWaiting();
    target.Forget();
    InvalidateRect(target, NULL, FALSE);
    SetTimer(target, 1, 10, NULL);
    Sleep(10);
    window::TouchScreen(Touch::kDown, 5, 5);
    PostQuitMessage(7);
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

PLATFORM_TEST(Retrieval, AFilterTakesWhatItNamesAndLeavesTheRestInOrder) {
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
    PostThreadMessageW(GetCurrentThreadId(), kPosted, 4, 0);
    for (const auto& each : cases)
        for (const UINT flags : {PM_NOREMOVE, PM_NOREMOVE, PM_REMOVE}) {
            MSG message{};
            EXPECT_EQ(PeekMessageW(&message, each.window, each.lowest, each.highest, flags),
                      each.expected != 0);
            EXPECT_EQ(message.wParam, each.expected);
        }
}

PLATFORM_TEST(Retrieval, AStaleFilterWindowIsAnErrorAlsoWhileWaiting) {
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

PLATFORM_TEST(Posting, ToAFullQueueFailsUntilSomethingWasFetched) {
    const TestWindow target;
    const auto expect_full_at = [](int most, const std::function<bool()>& send) {
        int sent = 0;
        while (sent < 20000 && send())
            ++sent;
        EXPECT_EQ(sent, most);
        ExpectFails(ERROR_NOT_ENOUGH_QUOTA, send);
    };
    const auto post = [&] { return PostMessageW(target, kPosted, 0, 0); };
    expect_full_at(10000, post);
    MSG message{};
    EXPECT_TRUE(PeekMessageW(&message, NULL, 0, 0, PM_REMOVE));
    expect_full_at(1, post);
    Crew([&] { expect_full_at(10000, [&] { return SendNotifyMessageW(target, kSent, 0, 0); }); });
}

TEST(Waiting, WakesForItsKindsOfMessagesAndForHandles) {
    const auto post = [](HWND target) { PostMessageW(target, kPosted, 0, 0); };
    const auto arm = [](HWND target) { SetTimer(target, 1, 10, NULL); };
    const struct {
        const char* name;
        DWORD mask;
        bool wakes;
        std::function<void(HWND)> cause;
    } cases[] = {
        {"posted", QS_POSTMESSAGE, true, post},
        {"posted, not wanted", QS_SENDMESSAGE, false, post},
        {"sent", QS_SENDMESSAGE, true, [](HWND h) { SendNotifyMessageW(h, kSent, 0, 0); }},
        {"timer", QS_ALLINPUT, true, arm},
        {"timer, not wanted", QS_ALLINPUT & ~QS_TIMER, false, arm},
        {"touch", QS_INPUT, true, [](HWND) { window::TouchScreen(Touch::kUp, 5, 5); }},
        {"paint", QS_PAINT, true, [](HWND h) { InvalidateRect(h, NULL, FALSE); }},
        {"nothing", QS_ALLINPUT, false, [](HWND) {}},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        const TestWindow target(kValidate);
        target.Show();
        HandleWaiting();
        const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
        const Crew peer([&] {
            Sleep(20);
            each.cause(target);
        });
        EXPECT_EQ(MsgWaitForMultipleObjects(1, &event, FALSE, 200, each.mask),
                  each.wakes ? WAIT_OBJECT_0 + 1 : WAIT_TIMEOUT);
        SetEvent(event);
        EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &event, 200, each.mask, 0), WAIT_OBJECT_0);
        CloseHandle(event);
        HandleWaiting();
        const auto wait = [&](DWORD count, BOOL all) {
            return MsgWaitForMultipleObjects(count, &event, all, 0, each.mask) != WAIT_FAILED;
        };
        ExpectFails(ERROR_INVALID_HANDLE, [&] { return wait(1, FALSE); });
        ExpectFails(ERROR_INVALID_PARAMETER, [&] { return wait(0, TRUE); });
    });
}

}  // namespace
}  // namespace tests
