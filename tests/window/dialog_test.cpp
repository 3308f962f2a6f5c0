#include "tests/window/test_window.h"

namespace tests {
namespace {

// A full-screen notice as a resource compiler writes it: DS_CONTROL removes the caption.
constexpr DWORD kNoticeStyle =
    WS_POPUP | WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | DS_CONTROL | DS_SETFONT;

std::vector<WORD> MakeTemplate(DWORD style = kNoticeStyle, WORD controls = 0, WORD menu = 0) {
    std::vector<WORD> units = {LOWORD(style), HIWORD(style), 0, 0, controls, 0, 0, 187, 102};
    if (menu != 0)
        units.push_back(0xFFFF);
    units.insert(units.end(), {menu, 0, u'通', u'知', 0, 8, u'T', u'a', u'h', 0});
    return units;
}

using DialogHandler = std::function<void(HWND, UINT)>;

// The handler of the dialog that runs; these tests run one dialog at a time.
DialogHandler g_handler;

INT_PTR RunDialog(HWND owner, DialogHandler handler,
                  const std::vector<WORD>& units = MakeTemplate()) {
    g_handler = std::move(handler);
    const auto procedure = [](HWND dialog, UINT message, WPARAM, LPARAM parameter) -> INT_PTR {
        EXPECT_TRUE(message != WM_INITDIALOG || parameter == 99);
        g_handler(dialog, message);
        return FALSE;
    };
    return DialogBoxIndirectParamW(NULL, reinterpret_cast<LPCDLGTEMPLATEW>(units.data()), owner,
                                   procedure, 99);
}

TEST(Dialog, EndsInManyWays) {
    constexpr DWORD kDisabled = WS_POPUP | WS_DISABLED;
    const struct {
        const char* name;
        bool owned;
        void (*act)(HWND owner, HWND dialog);  // in WM_TIMER of the dialog
        INT_PTR expected;
        bool owner_left = true;
        bool quits = false;
        DWORD owner_style = WS_POPUP;
    } cases[] = {
        {"no owner", false, [](HWND, HWND dialog) { EndDialog(dialog, 3); }, 3},
        {"its owner is destroyed", true, [](HWND owner, HWND) { DestroyWindow(owner); }, 0, false},
        {"it is destroyed itself", true, [](HWND, HWND dialog) { DestroyWindow(dialog); }, 0},
        {"its thread quits", true, [](HWND, HWND) { PostQuitMessage(8); }, 0, true, true},
        {"ended by another thread", true,
         [](HWND, HWND dialog) { Crew([=] { EndDialog(dialog, 6); }); }, 6},
        {"its owner was disabled", true, [](HWND, HWND dialog) { EndDialog(dialog, 7); }, 7, true,
         false, kDisabled},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        const TestWindow owner(TestWindow::Options{.style = each.owner_style});
        owner.Show();
        const auto handler = [&](HWND handle, UINT message) {
            if (message == WM_INITDIALOG) {
                // 187 x 102 dialog units, 6 x 13 pixels being 4 x 8 of them; no caption.
                RECT client{};
                GetClientRect(handle, &client);
                EXPECT_TRUE(client.right == 281 && client.bottom == 166);
                EXPECT_FALSE(each.owned && StateOf(owner)->enabled);
                SetTimer(handle, 1, 100, NULL);
            }
            if (message == WM_TIMER) {
                KillTimer(handle, 1);
                each.act(owner, handle);
            }
        };
        EXPECT_EQ(RunDialog(each.owned ? owner.handle() : NULL, handler), each.expected);
        const bool usable = each.owner_left && each.owner_style != kDisabled;
        const auto state = StateOf(owner);
        EXPECT_EQ(state.has_value(), each.owner_left);
        EXPECT_EQ(state && state->enabled, usable);
        EXPECT_TRUE(!usable || GetActiveWindow() == owner.handle());
        EXPECT_EQ(window::TopLevelWindows().size(), each.owner_left ? 1U : 0U);
        MSG message{};
        EXPECT_EQ(PeekMessageW(&message, NULL, WM_QUIT, WM_QUIT, PM_REMOVE), each.quits);
        EXPECT_EQ(message.wParam, each.quits ? 8U : 0U);
    });
}

PLATFORM_TEST(Dialog, NeedsATemplateOfItsKindAndALivingOwner) {
    std::vector<WORD> extended = MakeTemplate();
    extended[0] = 1;
    extended[1] = 0xFFFF;
    const auto made = [](HWND owner, const auto& units) { return RunDialog(owner, {}, units) + 1; };
    for (const auto& units : {MakeTemplate(kNoticeStyle, 1), MakeTemplate(kNoticeStyle, 0, 7),
                              MakeTemplate(kNoticeStyle & ~DS_CONTROL), extended})
        ExpectFails(ERROR_CALL_NOT_IMPLEMENTED, [&] { return made(NULL, units); });
    ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return made(kNoWindow, MakeTemplate()); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return made(NULL, std::vector<WORD>()); });
}

}  // namespace
}  // namespace tests
