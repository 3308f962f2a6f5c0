#include "tests/support/cases.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

// The titles from the top, topmost windows with a star.
std::string Stack() {
    std::string stack;
    for (const auto& state : window::TopLevelWindows())
        stack += static_cast<char>(state.title[0]) + std::string(state.topmost ? "*" : "");
    return stack;
}

TEST(Stacking, ChangesBySetWindowPosAndForeground) {
    const auto cases = CasesFrom(WINDOW_CASES "/stacking.txt");
    ASSERT_FALSE(cases.empty());
    for (const auto& [steps, expected] : cases)
        OnPlatform([&, steps = steps, expected = expected] {
            using Options = TestWindow::Options;
            const TestWindow a(Options{.title = L"a"}), b(Options{.title = L"b"}),
                c(Options{.title = L"c"}), d(Options{.owner = b, .title = L"d"});
            const HWND places[] = {a, b, c, d, HWND_TOP, HWND_BOTTOM, HWND_TOPMOST, HWND_NOTOPMOST};
            const auto place = [&](char mark) {
                return places[std::string("abcd^_*-").find(mark)];
            };
            for (std::size_t at = 0; steps[at] != '\n'; at += 2) {
                const HWND target = place(steps[at]);
                const char where = steps[at + 1];
                if (where == '!' || where == '|')
                    SetForegroundWindow(HWND(UINT_PTR(target) | (where == '|')));
                else
                    SetWindowPos(target, place(where), 0, 0, 0, 0,
                                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
            }
            EXPECT_EQ(Stack(), expected) << "after " << steps;
        });
}

PLATFORM_TEST(TouchRouting, SleepingThreadDelaysOnlyItsOwnTouches) {
    int pressed = 0;
    const WindowThread other({.place = {100, 0, 200, 100}},
                             On(WM_LBUTTONDOWN, [&](HWND, WPARAM) { return ++pressed; }));
    const TestWindow own;
    own.Show();
    window::TouchScreen(Touch::kDown, 10, 10);
    for (int x = 11; x < 50; ++x)
        window::TouchScreen(Touch::kMove, x, 10);
    window::TouchScreen(Touch::kDown, 110, 10);
    Sleep(100);
    EXPECT_EQ(pressed, 1);
    EXPECT_EQ(own.Count(WM_LBUTTONDOWN), 0U);
    HandleWaiting();
    EXPECT_EQ(own.Order({WM_LBUTTONDOWN, WM_MOUSEMOVE}), (Numbers{WM_LBUTTONDOWN, WM_MOUSEMOVE}))
        << "moves in a row are one message";
}

PLATFORM_TEST(Activation, MovesWithShowingHidingAndDestroying) {
    const Numbers interesting{WM_ACTIVATE, WM_SETFOCUS, WM_KILLFOCUS};
    const auto expect_active = [](HWND expected) {
        EXPECT_EQ(GetActiveWindow(), expected);
        EXPECT_EQ(Foreground(), expected);
    };
    TestWindow first, second;
    first.Show();
    expect_active(first);
    first.Forget();
    second.Show();
    expect_active(second);
    EXPECT_EQ(first.Order(interesting), (Numbers{WM_ACTIVATE, WM_KILLFOCUS}));
    EXPECT_EQ(first.Last(WM_ACTIVATE).wParam, WA_INACTIVE);
    EXPECT_EQ(second.Order(interesting), (Numbers{WM_ACTIVATE, WM_SETFOCUS}));
    ShowWindow(second, SW_HIDE);
    expect_active(first);
    ShowWindow(second, SW_SHOWNA);
    expect_active(first);
    SetForegroundWindow(second);
    DestroyWindow(second);
    expect_active(first);
    // A disabled window becomes active without the focus, which no other window keeps.
    const TestWindow disabled(TestWindow::Options{.style = WS_POPUP | WS_DISABLED});
    first.Forget();
    SetForegroundWindow(disabled);
    ShowWindow(disabled, SW_SHOW);
    expect_active(disabled);
    EXPECT_EQ(first.Order(interesting), (Numbers{WM_ACTIVATE, WM_KILLFOCUS}));
    EXPECT_EQ(disabled.Order(interesting), Numbers{WM_ACTIVATE});
    ShowWindow(disabled, SW_HIDE);
    DestroyWindow(first);
    expect_active(NULL);
}

PLATFORM_TEST(Activation, BetweenThreadsDoesNotWait) {
    TestWindow own;
    own.Show();
    own.Forget();
    const WindowThread other({});
    EXPECT_EQ(Foreground(), HWND{other});
    EXPECT_EQ(own.Count(WM_ACTIVATE), 0U);
    HandleWaiting();
    EXPECT_EQ(own.Count(WM_ACTIVATE), 1U);
    EXPECT_EQ(GetActiveWindow(), nullptr);
    EXPECT_TRUE(SetForegroundWindow(own));
    EXPECT_EQ(GetActiveWindow(), own.handle());
    Crew([&] { EXPECT_TRUE(SetForegroundWindow(other)); });
    EXPECT_EQ(Foreground(), HWND{other});
    other.Stop();
    Sleep(10);
    HandleWaiting();
    EXPECT_EQ(GetActiveWindow(), own.handle());
}

TEST(TouchRouting, GoesToTheTopmostVisibleWindowUnlessItIsDisabled) {
    const auto nothing = [](HWND) {};
    const auto hide = [](HWND upper) {
        ShowWindow(upper, SW_HIDE);
        SetWindowPos(upper, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    };
    const struct {
        const char* name;
        int x, y;
        std::function<void(HWND upper)> prepare;
        char to;
        LPARAM seen = 0;
        DWORD upper_style = 0;
    } cases[] = {
        {"lower alone", 10, 20, nothing, 'l', MAKELPARAM(10, 20)},
        {"both", 120, 130, nothing, 'u', MAKELPARAM(20, 30)},
        {"upper's last pixel", 299, 299, nothing, 'u', MAKELPARAM(199, 199)},
        {"beside upper", 300, 299, nothing, '-'},
        {"upper disabled", 120, 130, nothing, '-', 0, WS_DISABLED},
        {"upper hidden", 120, 130, hide, 'l', MAKELPARAM(120, 130)},
        {"off the screen", -1, 20, nothing, '-'},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        const Numbers all{WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP};
        const TestWindow lower(TestWindow::Options{.place = {0, 0, 200, 200}}),
            upper(TestWindow::Options{.place = {100, 100, 300, 300},
                                      .style = WS_POPUP | each.upper_style});
        lower.Show();
        upper.Show();
        each.prepare(upper);
        for (const Touch touch : {Touch::kDown, Touch::kMove, Touch::kUp})
            window::TouchScreen(touch, each.x, each.y);
        HandleWaiting();
        EXPECT_EQ(lower.Order(all), each.to == 'l' ? all : Numbers());
        EXPECT_EQ(upper.Order(all), each.to == 'u' ? all : Numbers());
        if (each.to == '-')
            return;
        const TestWindow& touched = each.to == 'l' ? lower : upper;
        EXPECT_EQ(Foreground(), touched.handle());
        EXPECT_EQ(touched.Last(WM_LBUTTONDOWN).lParam, each.seen);
        EXPECT_EQ(touched.Last(WM_LBUTTONDOWN).wParam, WPARAM{MK_LBUTTON});
    });
}

}  // namespace
}  // namespace tests
