#include "tests/window/test_window.h"

namespace tests {
namespace {

PLATFORM_TEST(Creation, FailsVisibly) {
    const TestWindow registers_the_class;
    const auto fails = [](DWORD error, DWORD style, HWND owner, LPCWSTR name = TestWindow::kClass) {
        ExpectFails(error, [&] {
            return CreateWindowExW(0, name, L"", style, 0, 0, 10, 10, owner, NULL, NULL, NULL);
        });
    };
    fails(ERROR_CANNOT_FIND_WND_CLASS, WS_POPUP, NULL, L"unknown");
    fails(ERROR_INVALID_WINDOW_HANDLE, WS_POPUP, kNoWindow);
    for (const DWORD style : {WS_CHILD, WS_CAPTION, WS_VSCROLL})
        fails(ERROR_CALL_NOT_IMPLEMENTED, DWORD(style), NULL);
}

TEST(Creation, FailsWhenTheProcedureRefuses) {
    const Numbers all{WM_NCCREATE, WM_CREATE, WM_DESTROY, WM_NCDESTROY};
    const auto expect = [&](const Numbers& seen, UINT number, auto result) {
        OnPlatform([&] {
            const TestWindow target(On(number, result));
            EXPECT_EQ(target.handle(), nullptr);
            EXPECT_EQ(target.Order(all), seen);
            EXPECT_EQ(FindWindowW(TestWindow::kClass, NULL), nullptr);
        });
    };
    expect({WM_NCCREATE, WM_NCDESTROY}, WM_NCCREATE, [](HWND, WPARAM) { return 0; });
    expect(all, WM_CREATE, [](HWND, WPARAM) { return -1; });
    expect(all, WM_CREATE, [](HWND handle, WPARAM) { return !DestroyWindow(handle); });
}

PLATFORM_TEST(Creation, ShowingAndDestructionSendTheirMessagesInOrder) {
    TestWindow target;
    const Numbers creation{WM_NCCREATE, WM_CREATE, WM_SIZE, WM_MOVE};
    const Numbers showing{WM_SHOWWINDOW, WM_ACTIVATE, WM_SETFOCUS, WM_WINDOWPOSCHANGED,
                          WM_WINDOWPOSCHANGED};
    const Numbers end{WM_CLOSE, WM_ACTIVATE, WM_KILLFOCUS, WM_DESTROY, WM_NCDESTROY};
    EXPECT_EQ(target.Order(creation), creation);
    EXPECT_EQ(target.Count(WM_SHOWWINDOW), 0U);
    target.Forget();
    EXPECT_FALSE(ShowWindow(target, SW_SHOW));
    EXPECT_TRUE(ShowWindow(target, SW_SHOW));
    EXPECT_EQ(target.Order(showing), showing);
    target.Forget();
    SendMessageW(target, WM_CLOSE, 0, 0);
    EXPECT_EQ(target.Order(end), end);
}

PLATFORM_TEST(Handles, InvalidOnesAreErrors) {
    const HWND stale = TestWindow().handle();
    const TestWindow takes_the_place;
    const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
    for (const HWND wrong : {stale, HWND(event), HWND(~UINT_PTR{7})})
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return SetForegroundWindow(wrong); });
    CloseHandle(event);
}

// A handle stands for one window of the other process, and stays invalid once that is gone.
PLATFORM_TEST(Handles, OfAnotherProcesssWindowAreValidUntilItIsGone) {
    OtherProcess& other = platform.board.other_process;
    other.window_class = L"Elsewhere";
    other.title = L"there";
    ExpectFails(ERROR_CANNOT_FIND_WND_CLASS, [] { return FindWindowW(L"Elsewhere", NULL); });
    other.window = 0x51;
    const HWND found = FindWindowW(L"Elsewhere", L"there");
    EXPECT_EQ(FindWindowW(NULL, L"there"), found);
    EXPECT_EQ(FindWindowW(L"Elsewhere", L"not there"), nullptr);
    EXPECT_TRUE(SetForegroundWindow(found));
    EXPECT_EQ(other.brought_forward, 0) << "with its owned windows only when asked to";
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return PostMessageW(found, 0, 0, 0); });
    other.window = 0x52;
    EXPECT_NE(FindWindowW(L"Elsewhere", NULL), found);
    for (const platform::OtherProcessWindow there : {0x52, 0x51}) {
        other.window = there;
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return SetForegroundWindow(found); });
    }
}

PLATFORM_TEST(Destruction, OnlyOnTheWindowsThreadAndOwnedWindowsFirst) {
    std::string order;
    const auto note = [&](char name) {
        return On(WM_DESTROY, [&order, name](HWND, WPARAM) {
            order += name;
            return 0;
        });
    };
    const TestWindow owner(note('a'));
    const TestWindow owned(TestWindow::Options{.owner = owner}, note('b'));
    const TestWindow inner(TestWindow::Options{.owner = owned}, note('c'));
    const WindowThread distant({.owner = owner}, On(WM_NCDESTROY, [](HWND, WPARAM) {
                                   PostQuitMessage(0);
                                   return 0;
                               }));
    ExpectFails(ERROR_ACCESS_DENIED, [&] { return DestroyWindow(distant); });
    EXPECT_TRUE(StateOf(distant));
    EXPECT_TRUE(DestroyWindow(owner));
    EXPECT_EQ(order, "cba");
    Sleep(10);
    EXPECT_FALSE(StateOf(distant));
}

PLATFORM_TEST(Destruction, HappensAtTheEndOfTheThread) {
    std::optional<TestWindow> left;
    Crew([&] {
        left.emplace();
        left->Show();
        SetTimer(*left, 1, 10, NULL);
        EXPECT_EQ(Foreground(), HWND{*left});
        EXPECT_NE(GetDC(*left), nullptr);
    });
    EXPECT_FALSE(StateOf(*left));
    EXPECT_EQ(Foreground(), nullptr);
}

PLATFORM_TEST(Class, NamesIgnoreCase) {
    WNDCLASSW settings{};
    settings.lpfnWndProc = DefWindowProcW;
    settings.lpszClassName = L"Tolvane";
    settings.cbWndExtra = 12;
    const ATOM atom = RegisterClassW(&settings);
    const HWND made = CreateWindowExW(0, MAKEINTRESOURCEW(atom), L"Title", WS_POPUP | WS_VISIBLE,
                                      CW_USEDEFAULT, 0, CW_USEDEFAULT, 0, NULL, NULL, NULL, NULL);
    WNDCLASSW found{};
    EXPECT_TRUE(GetClassInfoW(NULL, L"TOLVANE", &found));
    EXPECT_STREQ(found.lpszClassName, L"Tolvane");
    ExpectFails(ERROR_CLASS_ALREADY_EXISTS, [&] { return RegisterClassW(&found); });
    EXPECT_EQ(FindWindowW(L"tolvane", L"title"), made);
    EXPECT_EQ(FindWindowW(L"Tolvane", L"other"), nullptr);
    EXPECT_EQ(FindWindowW(NULL, L"title"), made);
    // Left to the system, a window covers the screen.
    RECT place{};
    GetWindowRect(made, &place);
    EXPECT_TRUE(place.right == GetSystemMetrics(SM_CXSCREEN) &&
                place.bottom == GetSystemMetrics(SM_CYSCREEN) && place.left + place.top == 0);

    EXPECT_EQ(SetWindowLongPtrW(made, 4, 0x1122334455667788), 0);
    EXPECT_EQ(SetWindowLongPtrW(made, 4, 0), 0x1122334455667788);
    for (const int index : {-1, -100, 5, 12, 1000})
        ExpectFails(ERROR_INVALID_INDEX, [&] { return SetWindowLongPtrW(made, index, 1); });
}

PLATFORM_TEST(Broadcast, OfARegisteredMessageReachesEveryTopLevelWindow) {
    const UINT status = RegisterWindowMessageW(L"Status");
    const UINT other = RegisterWindowMessageW(L"Other");
    EXPECT_TRUE(0xC000 <= status && status != other && other <= 0xFFFF);
    EXPECT_EQ(RegisterWindowMessageW(L"sTATUS"), status);
    ExpectFails(ERROR_INVALID_PARAMETER, [] { return RegisterWindowMessageW(L""); });
    const TestWindow visible, hidden, disabled(TestWindow::Options{.style = WS_DISABLED});
    visible.Show();
    Crew([=] { EXPECT_TRUE(PostMessageW(HWND_BROADCAST, status, 1, 2)); });
    HandleWaiting();
    for (const TestWindow* each : {&visible, &hidden, &disabled})
        EXPECT_EQ(each->Count(status), 1U);
}

}  // namespace
}  // namespace tests
