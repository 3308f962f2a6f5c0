#include "tests/window/test_window.h"

namespace tests {
namespace {

// A window of a separate class that leaves everything to the system.
HWND MakePlain(LPCWSTR class_name, int extra = 0) {
    WNDCLASSW settings{};
    settings.lpfnWndProc = DefWindowProcW;
    settings.lpszClassName = class_name;
    settings.cbWndExtra = extra;
    return CreateWindowExW(0, MAKEINTRESOURCEW(RegisterClassW(&settings)), L"Title",
                           WS_POPUP | WS_VISIBLE, CW_USEDEFAULT, 0, CW_USEDEFAULT, 0, NULL, NULL,
                           NULL, NULL);
}

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
    EXPECT_NE(takes_the_place.handle(), stale);
    const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
    for (const HWND wrong : {stale, HWND(event), reinterpret_cast<HWND>(~UINT_PTR{0} - 7)}) {
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE,
                    [&] { return PostMessageW(wrong, kPosted, 0, 0); });
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return SetForegroundWindow(wrong); });
    }
    CloseHandle(event);
}

PLATFORM_TEST(Handles, OfAnotherProcesssWindowAreValidUntilItIsGone) {
    OtherProcess& other = platform.board.other_process;
    constexpr auto kFind = [] { return FindWindowW(L"Elsewhere", NULL); };
    const auto forward = [](HWND handle, unsigned with_owned) {
        const auto value = reinterpret_cast<UINT_PTR>(handle) | with_owned;
        return SetForegroundWindow(reinterpret_cast<HWND>(value));
    };
    other.window_class = L"Elsewhere";
    other.title = L"there";
    ExpectFails(ERROR_CANNOT_FIND_WND_CLASS, kFind);

    other.window = 0x51;
    const HWND found = kFind();
    EXPECT_EQ(FindWindowW(L"Elsewhere", L"there"), found);
    EXPECT_EQ(FindWindowW(NULL, L"there"), found);
    EXPECT_EQ(FindWindowW(L"Elsewhere", L"not there"), HWND{NULL});
    for (const unsigned with_owned : {0, 1}) {
        EXPECT_TRUE(forward(found, with_owned));
        EXPECT_EQ(other.brought_forward, int(with_owned));
    }
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return PostMessageW(found, 0, 0, 0); });

    // Another window of that name has another handle, and the old handle stays invalid.
    other.window = 0x52;
    const HWND next = kFind();
    EXPECT_TRUE(next && next != found);
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return forward(found, 1); });
    other.window = 0x51;
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return forward(found, 1); });
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
    const WindowThread distant({.owner = owner});
    ExpectFails(ERROR_ACCESS_DENIED, [&] { return DestroyWindow(distant); });
    EXPECT_TRUE(StateOf(distant));
    EXPECT_TRUE(DestroyWindow(owner));
    EXPECT_EQ(order, "cba");
    Sleep(10);
    EXPECT_FALSE(StateOf(distant));
}

PLATFORM_TEST(Destruction, HappensAtTheEndOfTheThread) {
    Crew([] {
        const HWND left = MakePlain(L"Plain");
        SetTimer(left, 1, 10, NULL);
        EXPECT_EQ(Foreground(), left);
        EXPECT_NE(GetDC(left), nullptr);
    });
    EXPECT_EQ(FindWindowW(L"Plain", NULL), nullptr);
    EXPECT_EQ(Foreground(), nullptr);
}

PLATFORM_TEST(Class, NamesIgnoreCase) {
    const HWND made = MakePlain(L"Tolvane", 12);
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

PLATFORM_TEST(Broadcast, OfARegisteredMessageReachesEveryTopLevelWindowAndTheObserver) {
    std::wstring observed;
    window::ObserveBroadcasts([&](UINT message, WPARAM wparam, LPARAM lparam) {
        observed += window::RegisteredMessageName(message) + std::to_wstring(wparam * 10 + lparam);
    });
    const UINT status = RegisterWindowMessageW(L"Status");
    const UINT other = RegisterWindowMessageW(L"Other");
    EXPECT_TRUE(0xC000 <= status && status != other && other <= 0xFFFF);
    EXPECT_EQ(RegisterWindowMessageW(L"sTATUS"), status);
    ExpectFails(ERROR_INVALID_PARAMETER, [] { return RegisterWindowMessageW(L""); });
    const TestWindow visible, hidden, disabled(TestWindow::Options{.style = WS_DISABLED});
    visible.Show();
    Crew([=] {
        EXPECT_TRUE(PostMessageW(HWND_BROADCAST, status, 1, 2));
        window::PostToAll(other, 3, 4);
    });
    HandleWaiting();
    for (const TestWindow* each : {&visible, &hidden, &disabled})
        EXPECT_EQ(each->Order({status, other}), (Numbers{status, other}));
    EXPECT_EQ(observed, L"Status12");
}

}  // namespace
}  // namespace tests
