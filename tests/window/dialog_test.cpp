#include <gtest/gtest.h>

#include <atomic>
#include <cstring>

#include "platform/window/screen.h"
#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

namespace window = platform::window;

// A full-screen notice as a resource compiler writes it: a caption that DS_CONTROL takes away.
constexpr DWORD kNoticeStyle =
    WS_POPUP | WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | DS_CONTROL | DS_SETFONT;

std::vector<WORD> MakeTemplate(DWORD style, WORD controls = 0, WORD menu = 0) {
    std::vector<WORD> units = {LOWORD(style), HIWORD(style), 0, 0, controls, 0, 0, 187, 102};
    if (menu != 0)
        units.push_back(0xFFFF);
    units.push_back(menu);
    units.push_back(0);  // the default class
    for (const char16_t unit : {u'通', u'知', u'\0'})
        units.push_back(unit);
    units.push_back(8);
    for (const char16_t unit : std::u16string(u"MS Sans Serif") + u'\0')
        units.push_back(unit);
    return units;
}

using DialogHandler = std::function<INT_PTR(HWND, UINT, WPARAM, LPARAM)>;

// The handler of the dialog that runs; dialogs of these tests are made one at a time.
DialogHandler* g_handler = nullptr;

INT_PTR CALLBACK HandleDialog(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    return (*g_handler)(dialog, message, wparam, lparam);
}

INT_PTR RunDialog(HWND owner, DialogHandler handler, DWORD style = kNoticeStyle,
                  LPARAM parameter = 0) {
    const std::vector<WORD> units = MakeTemplate(style);
    g_handler = &handler;
    return DialogBoxIndirectParamW(NULL, reinterpret_cast<LPCDLGTEMPLATEW>(units.data()), owner,
                                   HandleDialog, parameter);
}

TEST(Dialog, RunsModallyOverItsOwner) {
    Platform platform;
    platform.Run([] {
        TestWindow owner({.place = {0, 0, 800, 480}});
        owner.Show();
        HandleWaiting();
        owner.Forget();

        HWND dialog = NULL;
        std::vector<UINT> order;
        const INT_PTR result = RunDialog(
            owner,
            [&](HWND handle, UINT message, WPARAM, LPARAM lparam) -> INT_PTR {
                order.push_back(message);
                switch (message) {
                    case WM_INITDIALOG: {
                        dialog = handle;
                        EXPECT_EQ(lparam, 99);
                        EXPECT_FALSE(IsWindowEnabled(owner));
                        EXPECT_FALSE(IsWindowVisible(handle));
                        // 187 x 102 dialog units, 6 x 13 pixels being 4 x 8 of them; no caption.
                        RECT client{};
                        GetClientRect(handle, &client);
                        EXPECT_EQ(client.right, 281);
                        EXPECT_EQ(client.bottom, 166);
                        EXPECT_EQ(GetWindowLongW(handle, GWL_STYLE) & LONG{WS_CAPTION}, 0);
                        EXPECT_EQ(GetParent(handle), owner.handle());
                        wchar_t title[8] = {};
                        GetWindowTextW(handle, title, 8);
                        EXPECT_STREQ(title, L"通知");
                        SetTimer(handle, 1, 100, NULL);
                        return TRUE;
                    }
                    case WM_TIMER:
                        EXPECT_TRUE(IsWindowVisible(handle));
                        EXPECT_EQ(GetActiveWindow(), handle);
                        PostMessageW(handle, WM_CLOSE, 0, 0);
                        return TRUE;
                    case WM_CLOSE:
                        EXPECT_TRUE(EndDialog(handle, 5));
                        EXPECT_TRUE(IsWindowEnabled(owner));
                        EXPECT_EQ(GetActiveWindow(), owner.handle());
                        return TRUE;
                    default:
                        return FALSE;
                }
            },
            kNoticeStyle, 99);
        EXPECT_EQ(result, 5);
        EXPECT_FALSE(IsWindow(dialog));
        EXPECT_TRUE(IsWindowEnabled(owner));
        EXPECT_EQ(order.front(), WM_INITDIALOG);
        EXPECT_EQ(order.back(), WM_NCDESTROY);
        EXPECT_EQ(std::count(order.begin(), order.end(), WM_DESTROY), 1);
        EXPECT_EQ(owner.Order({WM_ENABLE, WM_ACTIVATE}),
                  (std::vector<UINT>{WM_ENABLE, WM_ACTIVATE, WM_ENABLE, WM_ACTIVATE}));
    });
}

TEST(Dialog, AnOwnerThatWasDisabledStaysSo) {
    Platform platform;
    platform.Run([] {
        const TestWindow owner({.style = WS_POPUP | WS_DISABLED});
        RunDialog(owner, [](HWND handle, UINT message, WPARAM, LPARAM) -> INT_PTR {
            return message == WM_INITDIALOG && EndDialog(handle, 1);
        });
        EXPECT_FALSE(IsWindowEnabled(owner));
    });
}

TEST(Dialog, TakesTheTouchesAndPassesTheOwnersOtherMessages) {
    Platform platform;
    platform.Run([] {
        TestWindow owner({.place = {0, 0, 800, 480}});
        owner.Show();
        HandleWaiting();
        owner.Forget();
        int presses = 0;
        RunDialog(owner, [&](HWND handle, UINT message, WPARAM, LPARAM) -> INT_PTR {
            switch (message) {
                case WM_INITDIALOG:
                    SetTimer(owner, 260, 100, NULL);
                    SetTimer(handle, 1, 500, NULL);
                    window::TouchScreen(window::Touch::kDown, 10, 10);
                    window::TouchScreen(window::Touch::kDown, 700, 400);
                    return TRUE;
                case WM_LBUTTONDOWN:
                    ++presses;
                    return TRUE;
                case WM_TIMER:
                    EndDialog(handle, 0);
                    return TRUE;
                default:
                    return FALSE;
            }
        });
        EXPECT_EQ(presses, 1);
        EXPECT_EQ(owner.Count(WM_LBUTTONDOWN), 0U);
        EXPECT_GE(owner.Count(WM_TIMER), 4U);
    });
}

TEST(Dialog, EndsInManyWays) {
    struct Case {
        const char* name;
        bool owned;
        std::function<void(HWND owner, HWND dialog)> act;  // in WM_TIMER of the dialog
        INT_PTR expected;
        bool owner_left;
        bool quits;
    };
    const Case cases[] = {
        {"no owner", false, [](HWND, HWND dialog) { EndDialog(dialog, 3); }, 3, true, false},
        {"the owner is destroyed", true, [](HWND owner, HWND) { DestroyWindow(owner); }, 0, false,
         false},
        {"it is destroyed itself", true, [](HWND, HWND dialog) { DestroyWindow(dialog); }, 0, true,
         false},
        {"the thread quits", true, [](HWND, HWND) { PostQuitMessage(8); }, 0, true, true},
        {"ended by a message sent from elsewhere", true,
         [](HWND, HWND dialog) {
             const ApiThread peer([dialog] { EndDialog(dialog, 6); });
             Sleep(50);
         },
         6, true, false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            const TestWindow owner;
            owner.Show();
            const INT_PTR result =
                RunDialog(each.owned ? owner.handle() : NULL,
                          [&](HWND handle, UINT message, WPARAM, LPARAM) -> INT_PTR {
                              if (message == WM_INITDIALOG)
                                  SetTimer(handle, 1, 100, NULL);
                              if (message == WM_TIMER) {
                                  KillTimer(handle, 1);
                                  each.act(owner, handle);
                              }
                              return FALSE;
                          });
            EXPECT_EQ(result, each.expected);
            EXPECT_EQ(IsWindow(owner), each.owner_left);
            if (each.owner_left) {
                EXPECT_TRUE(IsWindowEnabled(owner));
                EXPECT_EQ(GetActiveWindow(), owner.handle());
            }
            EXPECT_EQ(window::TopLevelWindows().size(), each.owner_left ? 1U : 0U);
            MSG message{};
            const bool quit = PeekMessageW(&message, NULL, WM_QUIT, WM_QUIT, PM_REMOVE);
            EXPECT_EQ(quit, each.quits);
            if (quit) {
                EXPECT_EQ(message.wParam, 8U);
            }
        });
    }
}

TEST(Dialog, EndsWhenAnotherThreadDestroysItsOwner) {
    Platform platform;
    platform.Run([] {
        std::atomic<HWND> owner{nullptr};
        const ApiThread peer([&] {
            const TestWindow target;
            owner = target;
            Sleep(200);
        });
        while (owner == NULL)
            Sleep(1);
        bool destroyed = false;
        EXPECT_EQ(RunDialog(owner,
                            [&](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
                                destroyed = destroyed || message == WM_DESTROY;
                                return FALSE;
                            }),
                  0);
        EXPECT_TRUE(destroyed);
    });
}

TEST(Dialog, CannotBeMadeFrom) {
    struct Case {
        const char* name;
        std::vector<WORD> units;
        HWND owner;
        DWORD error;
    };
    const HWND stale = reinterpret_cast<HWND>(UINT_PTR{0x1248});
    std::vector<WORD> extended = MakeTemplate(kNoticeStyle);
    extended[0] = 1;
    extended[1] = 0xFFFF;
    const Case cases[] = {
        {"a stale owner", MakeTemplate(kNoticeStyle), stale, ERROR_INVALID_WINDOW_HANDLE},
        {"controls", MakeTemplate(kNoticeStyle, 1), NULL, ERROR_CALL_NOT_IMPLEMENTED},
        {"a menu", MakeTemplate(kNoticeStyle, 0, 7), NULL, ERROR_CALL_NOT_IMPLEMENTED},
        {"a caption", MakeTemplate(kNoticeStyle & ~DS_CONTROL), NULL, ERROR_CALL_NOT_IMPLEMENTED},
        {"the extended form", extended, NULL, ERROR_CALL_NOT_IMPLEMENTED},
    };
    Platform platform;
    platform.Run([&] {
        for (const Case& each : cases) {
            SCOPED_TRACE(each.name);
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(
                DialogBoxIndirectParamW(NULL, reinterpret_cast<LPCDLGTEMPLATEW>(each.units.data()),
                                        each.owner, HandleDialog, 0),
                -1);
            EXPECT_EQ(GetLastError(), each.error);
        }
        EXPECT_EQ(DialogBoxIndirectParamW(NULL, NULL, NULL, HandleDialog, 0), -1);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    });
}

TEST(Dialog, AnswersForItsProcedure) {
    Platform platform;
    platform.Run([] {
        constexpr UINT kHandled = WM_USER + 1;
        constexpr UINT kUnhandled = WM_USER + 2;
        DialogHandler handler = [](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
            switch (message) {
                case kHandled:
                    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 77);
                    return TRUE;
                case kUnhandled:
                    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 78);
                    return FALSE;
                case WM_CTLCOLORDLG:
                    return 79;
                default:
                    return FALSE;
            }
        };
        g_handler = &handler;
        const std::vector<WORD> units = MakeTemplate(kNoticeStyle);
        const HWND dialog = CreateDialogIndirectParamW(
            NULL, reinterpret_cast<LPCDLGTEMPLATEW>(units.data()), NULL, HandleDialog, 0);
        ASSERT_NE(dialog, nullptr);
        EXPECT_TRUE(IsWindowVisible(dialog));
        EXPECT_EQ(SendMessageW(dialog, kHandled, 0, 0), 77);
        EXPECT_EQ(SendMessageW(dialog, kUnhandled, 0, 0), 0);
        EXPECT_EQ(SendMessageW(dialog, WM_CTLCOLORDLG, 0, 0), 79);

        // Closing is a command to cancel; a dialog that is not modal cannot be ended.
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        MSG message{};
        EXPECT_TRUE(PeekMessageW(&message, dialog, WM_COMMAND, WM_COMMAND, PM_REMOVE));
        EXPECT_EQ(message.wParam, WPARAM{IDCANCEL});
        EXPECT_FALSE(EndDialog(dialog, 0));
        DestroyWindow(dialog);
    });
}

TEST(Dialog, ComesForwardForItsOwner) {
    Platform platform;
    platform.Run([] {
        const TestWindow owner;
        owner.Show();
        RunDialog(owner, [&](HWND handle, UINT message, WPARAM, LPARAM) -> INT_PTR {
            if (message == WM_INITDIALOG)
                SetTimer(handle, 1, 100, NULL);
            if (message == WM_TIMER) {
                const TestWindow between;
                between.Show();
                EXPECT_EQ(GetForegroundWindow(), between.handle());
                const UINT_PTR value = reinterpret_cast<UINT_PTR>(owner.handle());
                EXPECT_TRUE(SetForegroundWindow(reinterpret_cast<HWND>(value | 1)));
                EXPECT_EQ(GetForegroundWindow(), handle);
                EXPECT_EQ(window::TopLevelWindows().back().class_name, TestWindow::kClass);
                EndDialog(handle, 0);
            }
            return FALSE;
        });
    });
}

}  // namespace
}  // namespace tests
