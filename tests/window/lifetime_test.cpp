#include "tests/window/test_window.h"

namespace tests {
namespace {

// A window of a class of its own that leaves everything to the system.
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

TEST(Creation, AWindowMayRefuseToLive) {
    const Numbers all{WM_NCCREATE, WM_CREATE, WM_DESTROY, WM_NCDESTROY};
    const auto expect = [&](const Numbers& told, UINT number, auto answer) {
        OnPlatform([&] {
            const TestWindow target(On(number, answer));
            EXPECT_EQ(target.handle(), nullptr);
            EXPECT_EQ(target.Order(all), told);
            EXPECT_EQ(FindWindowW(TestWindow::kClass, NULL), nullptr);
        });
    };
    expect({WM_NCCREATE, WM_NCDESTROY}, WM_NCCREATE, [](HWND, WPARAM) { return 0; });
    expect(all, WM_CREATE, [](HWND, WPARAM) { return -1; });
    expect(all, WM_CREATE, [](HWND handle, WPARAM) { return !DestroyWindow(handle); });
}

PLATFORM_TEST(Creation, TellsTheWindowOfItsBirthShowingAndEnd) {
    TestWindow target;
    const Numbers birth{WM_NCCREATE, WM_CREATE, WM_SIZE, WM_MOVE};
    const Numbers showing{WM_SHOWWINDOW, WM_WINDOWPOSCHANGED, WM_ACTIVATE, WM_SETFOCUS,
                          WM_WINDOWPOSCHANGED};
    const Numbers end{WM_CLOSE, WM_ACTIVATE, WM_KILLFOCUS, WM_DESTROY, WM_NCDESTROY};
    EXPECT_EQ(target.Order(birth), birth);
    EXPECT_EQ(target.Count(WM_SHOWWINDOW), 0U);
    target.Forget();
    EXPECT_FALSE(ShowWindow(target, SW_SHOW));
    EXPECT_TRUE(ShowWindow(target, SW_SHOW));
    EXPECT_EQ(target.Order(showing), showing);
    target.Forget();
    SendMessageW(target, WM_CLOSE, 0, 0);
    EXPECT_EQ(target.Order(end), end);
}

PLATFORM_TEST(Handles, StaleAndForeignOnesAreErrors) {
    const HWND stale = TestWindow().handle();
    const TestWindow takes_the_place;
    EXPECT_NE(takes_the_place.handle(), stale);
    const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
    for (const HWND wrong : {stale, HWND(event), reinterpret_cast<HWND>(~UINT_PTR{0} - 7)}) {
        EXPECT_FALSE(IsWindow(wrong));
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE,
                    [&] { return PostMessageW(wrong, kPosted, 0, 0); });
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return SetForegroundWindow(wrong); });
    }
    CloseHandle(event);
}

PLATFORM_TEST(Handles, OfANeighboursWindowAreGoodUntilItIsGone) {
    Neighbour& neighbour = platform.board.neighbour;
    constexpr auto kFind = [] { return FindWindowW(L"Elsewhere", NULL); };
    const auto forward = [](HWND handle, unsigned with_owned) {
        const auto value = reinterpret_cast<UINT_PTR>(handle) | with_owned;
        return SetForegroundWindow(reinterpret_cast<HWND>(value));
    };
    neighbour.window_class = L"Elsewhere";
    neighbour.title = L"there";
    ExpectFails(ERROR_CANNOT_FIND_WND_CLASS, kFind);

    neighbour.window = 0x51;
    const HWND found = kFind();
    EXPECT_EQ(FindWindowW(L"Elsewhere", L"there"), found);
    EXPECT_EQ(FindWindowW(NULL, L"there"), found);
    EXPECT_EQ(FindWindowW(L"Elsewhere", L"not there"), HWND{NULL});
    EXPECT_TRUE(IsWindow(found));
    for (const unsigned with_owned : {0, 1}) {
        EXPECT_TRUE(forward(found, with_owned));
        EXPECT_EQ(neighbour.brought_forward, int(with_owned));
    }
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return PostMessageW(found, 0, 0, 0); });

    // Another window of that name is another handle, and the old one stays stale.
    neighbour.window = 0x52;
    EXPECT_FALSE(IsWindow(found));
    const HWND next = kFind();
    EXPECT_TRUE(next && next != found);
    neighbour.window = 0x51;
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return forward(next, 1); });
    EXPECT_FALSE(IsWindow(found) || IsWindow(next));
}

PLATFORM_TEST(Destruction, IsForTheWindowsThreadAndTakesOwnedWindowsAlongFirst) {
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
    EXPECT_TRUE(IsWindow(distant));
    EXPECT_TRUE(DestroyWindow(owner));
    EXPECT_EQ(order, "cba");
    Sleep(10);
    EXPECT_FALSE(IsWindow(distant));
}

PLATFORM_TEST(Destruction, ComesWithTheEndOfTheThread) {
    Crew([] {
        const HWND left = MakePlain(L"Plain");
        SetTimer(left, 1, 10, NULL);
        EXPECT_EQ(GetForegroundWindow(), left);
        EXPECT_NE(GetDC(left), nullptr);
    });
    EXPECT_EQ(FindWindowW(L"Plain", NULL), nullptr);
    EXPECT_EQ(GetForegroundWindow(), nullptr);
}

PLATFORM_TEST(Class, NamesAreUniqueWhateverTheirCase) {
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

    constexpr LONG_PTR kWide = 0x1122334455667788;
    EXPECT_EQ(SetWindowLongPtrW(made, 0, kWide), 0);
    EXPECT_EQ(SetWindowLongW(made, 8, -5), 0);
    EXPECT_EQ(GetWindowLongPtrW(made, 0), kWide);
    EXPECT_EQ(GetWindowLongW(made, 8), -5);
    for (const int index : {-1, -100, 5, 12, 1000})
        ExpectFails(ERROR_INVALID_INDEX, [&] { return GetWindowLongPtrW(made, index); });
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
