#include <gtest/gtest.h>

#include <atomic>

#include "platform/window/screen.h"
#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

namespace window = platform::window;

TEST(Class, NamesAreUniqueWhateverTheirCase) {
    Platform platform;
    platform.Run([] {
        WNDCLASSW settings{};
        settings.lpfnWndProc = DefWindowProcW;
        settings.lpszClassName = L"Tolvane";
        const ATOM atom = RegisterClassW(&settings);
        EXPECT_NE(atom, 0);
        settings.lpszClassName = L"TOLVANE";
        EXPECT_EQ(RegisterClassW(&settings), 0);
        EXPECT_EQ(GetLastError(), ERROR_CLASS_ALREADY_EXISTS);

        WNDCLASSW found{};
        EXPECT_TRUE(GetClassInfoW(NULL, L"tolvane", &found));
        EXPECT_EQ(found.lpfnWndProc, &DefWindowProcW);
        EXPECT_STREQ(found.lpszClassName, L"Tolvane");
        EXPECT_FALSE(GetClassInfoW(NULL, L"another", &found));
        EXPECT_EQ(GetLastError(), ERROR_CLASS_DOES_NOT_EXIST);

        const HWND made = CreateWindowExW(0, MAKEINTRESOURCEW(atom), L"Title", 0, CW_USEDEFAULT, 0,
                                          CW_USEDEFAULT, 0, NULL, NULL, NULL, NULL);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(FindWindowW(L"tolvane", NULL), made);
        EXPECT_EQ(FindWindowW(NULL, L"title"), made);
        EXPECT_EQ(FindWindowW(L"Tolvane", L"Title"), made);
        EXPECT_EQ(FindWindowW(L"Tolvane", L"other"), nullptr);
        EXPECT_EQ(FindWindowW(L"HHTaskBar", NULL), nullptr);
        wchar_t text[8] = {};
        EXPECT_EQ(GetClassNameW(made, text, 8), 7);
        EXPECT_STREQ(text, L"Tolvane");
        EXPECT_EQ(GetWindowTextW(made, text, 4), 3);
        EXPECT_STREQ(text, L"Tit");
        EXPECT_TRUE(SetWindowTextW(made, L"New"));
        EXPECT_EQ(FindWindowW(L"Tolvane", L"new"), made);

        // Left to the system, a window covers the screen.
        RECT place{};
        GetWindowRect(made, &place);
        EXPECT_EQ(place.left, 0);
        EXPECT_EQ(place.top, 0);
        EXPECT_EQ(place.right, GetSystemMetrics(SM_CXSCREEN));
        EXPECT_EQ(place.bottom, GetSystemMetrics(SM_CYSCREEN));

        EXPECT_FALSE(UnregisterClassW(L"Tolvane", NULL));
        EXPECT_EQ(GetLastError(), ERROR_CLASS_HAS_WINDOWS);
        DestroyWindow(made);
        EXPECT_TRUE(UnregisterClassW(L"Tolvane", NULL));
        EXPECT_FALSE(UnregisterClassW(L"Tolvane", NULL));
        EXPECT_EQ(GetLastError(), ERROR_CLASS_DOES_NOT_EXIST);
    });
}

TEST(Creation, TellsTheWindowOfItsBirthShowingAndEnd) {
    Platform platform;
    platform.Run([] {
        TestWindow target;
        EXPECT_EQ(target.Order({WM_NCCREATE, WM_CREATE, WM_SIZE, WM_MOVE, WM_SHOWWINDOW}),
                  (std::vector<UINT>{WM_NCCREATE, WM_CREATE, WM_SIZE, WM_MOVE}));
        EXPECT_FALSE(IsWindowVisible(target));
        target.Forget();
        EXPECT_FALSE(ShowWindow(target, SW_SHOW));
        EXPECT_TRUE(ShowWindow(target, SW_SHOW));
        EXPECT_EQ(target.Order({WM_SHOWWINDOW, WM_WINDOWPOSCHANGED, WM_ACTIVATE, WM_SETFOCUS}),
                  (std::vector<UINT>{WM_SHOWWINDOW, WM_WINDOWPOSCHANGED, WM_ACTIVATE, WM_SETFOCUS,
                                     WM_WINDOWPOSCHANGED}));
        target.Forget();
        const HWND handle = target;
        SendMessageW(handle, WM_CLOSE, 0, 0);
        EXPECT_EQ(
            target.Order({WM_CLOSE, WM_ACTIVATE, WM_KILLFOCUS, WM_DESTROY, WM_NCDESTROY}),
            (std::vector<UINT>{WM_CLOSE, WM_ACTIVATE, WM_KILLFOCUS, WM_DESTROY, WM_NCDESTROY}));
        EXPECT_FALSE(IsWindow(handle));
    });
}

TEST(Creation, FailsVisibly) {
    struct Case {
        const char* name;
        DWORD style;
        LPCWSTR class_name;
        HWND owner;
        DWORD error;
    };
    const HWND stale = reinterpret_cast<HWND>(UINT_PTR{0x1248});
    const Case cases[] = {
        {"no such class", WS_POPUP, L"unknown", NULL, ERROR_CANNOT_FIND_WND_CLASS},
        {"no such owner", WS_POPUP, TestWindow::kClass, stale, ERROR_INVALID_WINDOW_HANDLE},
        {"a child", WS_CHILD, TestWindow::kClass, NULL, ERROR_CALL_NOT_IMPLEMENTED},
        {"a caption", WS_CAPTION, TestWindow::kClass, NULL, ERROR_CALL_NOT_IMPLEMENTED},
        {"a scroll bar", WS_VSCROLL, TestWindow::kClass, NULL, ERROR_CALL_NOT_IMPLEMENTED},
    };
    Platform platform;
    platform.Run([&] {
        const TestWindow registers_the_class;
        for (const Case& each : cases) {
            SCOPED_TRACE(each.name);
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(CreateWindowExW(0, each.class_name, L"", each.style, 0, 0, 10, 10, each.owner,
                                      NULL, NULL, NULL),
                      nullptr);
            EXPECT_EQ(GetLastError(), each.error);
        }
    });
}

TEST(Creation, AWindowMayRefuseToLive) {
    struct Case {
        const char* name;
        UINT at;
        LRESULT answer;
        std::vector<UINT> expected;
    };
    const Case cases[] = {
        {"at WM_NCCREATE", WM_NCCREATE, FALSE, {WM_NCCREATE, WM_NCDESTROY}},
        {"at WM_CREATE", WM_CREATE, -1, {WM_NCCREATE, WM_CREATE, WM_DESTROY, WM_NCDESTROY}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            const TestWindow target([&](HWND, UINT message, WPARAM, LPARAM) {
                return message == each.at ? std::optional(each.answer) : std::nullopt;
            });
            EXPECT_EQ(target.handle(), nullptr);
            EXPECT_EQ(target.Order({WM_NCCREATE, WM_CREATE, WM_SIZE, WM_DESTROY, WM_NCDESTROY}),
                      each.expected);
            EXPECT_EQ(FindWindowW(TestWindow::kClass, NULL), nullptr);
        });
    }
}

TEST(Creation, AWindowMayDestroyItselfWhileItIsMade) {
    Platform platform;
    platform.Run([] {
        const TestWindow target([](HWND handle, UINT message, WPARAM, LPARAM) {
            if (message == WM_CREATE)
                DestroyWindow(handle);
            return std::optional<LRESULT>();
        });
        EXPECT_EQ(target.handle(), nullptr);
        EXPECT_EQ(target.Count(WM_NCDESTROY), 1U);
    });
}

TEST(Handles, StaleAndForeignOnesAreErrors) {
    using Call = std::function<bool(HWND)>;
    const std::pair<const char*, Call> calls[] = {
        {"DestroyWindow", [](HWND h) { return DestroyWindow(h); }},
        {"ShowWindow", [](HWND h) { return ShowWindow(h, SW_SHOW); }},
        {"EnableWindow", [](HWND h) { return EnableWindow(h, TRUE); }},
        {"MoveWindow", [](HWND h) { return MoveWindow(h, 0, 0, 1, 1, TRUE); }},
        {"SetWindowPos", [](HWND h) { return SetWindowPos(h, HWND_TOP, 0, 0, 1, 1, 0); }},
        {"IsWindowVisible", [](HWND h) { return IsWindowVisible(h); }},
        {"IsWindowEnabled", [](HWND h) { return IsWindowEnabled(h); }},
        {"GetWindow", [](HWND h) { return GetWindow(h, GW_OWNER) != NULL; }},
        {"GetParent", [](HWND h) { return GetParent(h) != NULL; }},
        {"SetForegroundWindow", [](HWND h) { return SetForegroundWindow(h); }},
        {"SetActiveWindow", [](HWND h) { return SetActiveWindow(h) != NULL; }},
        {"SetFocus", [](HWND h) { return SetFocus(h) != NULL; }},
        {"GetWindowLongPtrW", [](HWND h) { return GetWindowLongPtrW(h, GWLP_USERDATA) != 0; }},
        {"SetWindowLongPtrW", [](HWND h) { return SetWindowLongPtrW(h, GWLP_USERDATA, 1) != 0; }},
        {"GetWindowLongW", [](HWND h) { return GetWindowLongW(h, GWL_STYLE) != 0; }},
        {"SetWindowTextW", [](HWND h) { return SetWindowTextW(h, L"x"); }},
        {"SendMessageW", [](HWND h) { return SendMessageW(h, WM_NULL, 0, 0) != 0; }},
        {"PostMessageW", [](HWND h) { return PostMessageW(h, WM_NULL, 0, 0); }},
        {"InvalidateRect", [](HWND h) { return InvalidateRect(h, NULL, TRUE); }},
        {"ValidateRect", [](HWND h) { return ValidateRect(h, NULL); }},
        {"UpdateWindow", [](HWND h) { return UpdateWindow(h); }},
        {"GetUpdateRect", [](HWND h) { return GetUpdateRect(h, NULL, FALSE); }},
        {"GetDC", [](HWND h) { return GetDC(h) != NULL; }},
        {"EndDialog", [](HWND h) { return EndDialog(h, 0); }},
        {"GetWindowThreadProcessId", [](HWND h) { return GetWindowThreadProcessId(h, NULL) != 0; }},
        {"BeginPaint",
         [](HWND h) {
             PAINTSTRUCT paint{};
             return BeginPaint(h, &paint) != NULL;
         }},
        {"GetWindowRect",
         [](HWND h) {
             RECT place{};
             return GetWindowRect(h, &place);
         }},
        {"ClientToScreen",
         [](HWND h) {
             POINT point{};
             return ClientToScreen(h, &point);
         }},
    };
    Platform platform;
    platform.Run([&] {
        HWND stale = NULL;
        {
            const TestWindow gone;
            stale = gone;
        }
        const TestWindow takes_the_place;
        EXPECT_NE(takes_the_place.handle(), stale);
        const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
        for (const HWND wrong :
             {stale, static_cast<HWND>(event), reinterpret_cast<HWND>(~UINT_PTR{0} - 7)}) {
            EXPECT_FALSE(IsWindow(wrong));
            for (const auto& [name, call] : calls) {
                SCOPED_TRACE(name);
                SetLastError(ERROR_SUCCESS);
                EXPECT_FALSE(call(wrong));
                EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
            }
        }
        CloseHandle(event);
    });
}

TEST(Destruction, IsForTheThreadThatMadeTheWindow) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        ApiThread peer([&] {
            EXPECT_FALSE(DestroyWindow(target));
            EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        });
        peer.Join();
        EXPECT_TRUE(IsWindow(target));
    });
}

TEST(Destruction, TakesOwnedWindowsAlongFirst) {
    Platform platform;
    platform.Run([] {
        std::vector<std::string> order;
        const auto note = [&](const std::string& name) {
            return [&order, name](HWND, UINT message, WPARAM, LPARAM) {
                if (message == WM_DESTROY)
                    order.push_back(name);
                return std::optional<LRESULT>();
            };
        };
        const TestWindow owner(note("owner"));
        const TestWindow owned({.owner = owner}, note("owned"));
        const TestWindow inner({.owner = owned}, note("inner"));
        EXPECT_EQ(GetParent(inner), owned.handle());

        std::atomic<HWND> of_other_thread{nullptr};
        const ApiThread peer([&] {
            const TestWindow distant({.owner = owner}, [](HWND, UINT message, WPARAM, LPARAM) {
                if (message == WM_DESTROY)
                    PostQuitMessage(0);
                return std::optional<LRESULT>();
            });
            of_other_thread = distant;
            RunMessageLoop();
        });
        while (of_other_thread == NULL)
            Sleep(1);
        EXPECT_TRUE(DestroyWindow(owner));
        EXPECT_EQ(order, (std::vector<std::string>{"inner", "owned", "owner"}));
        Sleep(10);
        EXPECT_FALSE(IsWindow(of_other_thread));
    });
}

TEST(Destruction, ComesWithTheEndOfTheThread) {
    Platform platform;
    platform.Run([] {
        WNDCLASSW settings{};
        settings.lpfnWndProc = DefWindowProcW;
        settings.lpszClassName = L"Plain";
        RegisterClassW(&settings);
        ApiThread leaver([] {
            const HWND left = CreateWindowExW(0, L"Plain", L"left", WS_POPUP | WS_VISIBLE, 0, 0, 10,
                                              10, NULL, NULL, NULL, NULL);
            SetTimer(left, 1, 10, NULL);
            EXPECT_EQ(GetForegroundWindow(), left);
            EXPECT_NE(GetDC(left), nullptr);
        });
        leaver.Join();
        EXPECT_EQ(FindWindowW(L"Plain", NULL), nullptr);
        EXPECT_EQ(GetForegroundWindow(), nullptr);
        EXPECT_TRUE(UnregisterClassW(L"Plain", NULL));
    });
}

TEST(WindowData, KeepsWhatIsSetAndRefusesOtherIndices) {
    Platform platform;
    platform.Run([] {
        WNDCLASSW settings{};
        settings.lpfnWndProc = DefWindowProcW;
        settings.lpszClassName = L"Extra";
        settings.cbWndExtra = 12;
        RegisterClassW(&settings);
        const HWND made =
            CreateWindowExW(0, L"Extra", L"", WS_POPUP, 0, 0, 10, 10, NULL, NULL, NULL, NULL);
        const LONG_PTR wide = 0x1122334455667788;
        EXPECT_EQ(SetWindowLongPtrW(made, GWLP_USERDATA, wide), 0);
        EXPECT_EQ(GetWindowLongPtrW(made, GWLP_USERDATA), wide);
        EXPECT_EQ(SetWindowLongPtrW(made, 0, wide), 0);
        EXPECT_EQ(SetWindowLongW(made, 8, -5), 0);
        EXPECT_EQ(GetWindowLongPtrW(made, 0), wide);
        EXPECT_EQ(GetWindowLongW(made, 8), -5);
        EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(made, GWL_STYLE)), WS_POPUP);
        EXPECT_EQ(GetWindowLongPtrW(made, GWLP_WNDPROC),
                  reinterpret_cast<LONG_PTR>(&DefWindowProcW));
        for (const int index : {-1, -100, 5, 12, 1000}) {
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(GetWindowLongPtrW(made, index), 0);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_INDEX) << index;
        }
        DestroyWindow(made);
    });
}

TEST(RegisteredMessages, HaveOneNumberForOneText) {
    Platform platform;
    platform.Run([] {
        const UINT first = RegisterWindowMessageW(L"_All_APP_PowerStatusChange_");
        const UINT other = RegisterWindowMessageW(L"_PowerSuspend_Acknowledge_");
        EXPECT_GE(first, 0xC000U);
        EXPECT_LE(first, 0xFFFFU);
        EXPECT_NE(first, other);
        EXPECT_EQ(RegisterWindowMessageW(L"_all_app_powerstatuschange_"), first);
        EXPECT_EQ(window::RegisteredMessageName(other), L"_PowerSuspend_Acknowledge_");
        EXPECT_EQ(window::RegisteredMessageName(0xFFFF), L"");
        EXPECT_EQ(window::RegisteredMessageName(WM_PAINT), L"");
        EXPECT_EQ(RegisterWindowMessageW(L""), 0U);
        EXPECT_EQ(RegisterWindowMessageW(NULL), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    });
}

TEST(Broadcast, ReachesEveryTopLevelWindowAndTheObserver) {
    Platform platform;
    std::vector<UINT> observed;
    window::ObserveBroadcasts([&](UINT message, WPARAM wparam, LPARAM lparam) {
        observed.insert(observed.end(), {message, UINT(wparam), UINT(lparam)});
    });
    platform.Run([] {
        TestWindow visible;
        visible.Show();
        TestWindow hidden;
        TestWindow disabled({.style = WS_POPUP | WS_DISABLED, .owner = visible});
        ApiThread peer([] {
            EXPECT_TRUE(PostMessageW(HWND_BROADCAST, 0xC123, 1, 2));
            window::PostToAll(0xC124, 3, 4);
        });
        peer.Join();
        HandleWaiting();
        for (TestWindow* each : {&visible, &hidden, &disabled})
            EXPECT_EQ(each->Order({0xC123, 0xC124}), (std::vector<UINT>{0xC123, 0xC124}));
    });
    EXPECT_EQ(observed, (std::vector<UINT>{0xC123, 1, 2}));
}

}  // namespace
}  // namespace tests
