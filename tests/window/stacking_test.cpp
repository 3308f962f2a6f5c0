#include "tests/window/test_window.h"

namespace tests {
namespace {

HWND WithLowestBit(HWND handle) {
    return reinterpret_cast<HWND>(reinterpret_cast<UINT_PTR>(handle) | 1);
}

// The titles from the top, topmost windows with a star.
std::string Stack() {
    std::string stack;
    for (const auto& state : window::TopLevelWindows())
        stack += static_cast<char>(state.title[0]) + std::string(state.topmost ? "*" : "");
    return stack;
}

TEST(Stacking, FollowsSetWindowPosAndTheForeground) {
    // A step is a window and where it goes: to the top (^), the bottom (_), the topmost (*), no
    // longer topmost (-), behind a window, to the foreground alone (!) or with what it owns (|).
    const struct {
        const char* name;
        std::string steps;
        std::string expected;
    } cases[] = {
        {"as made", "", "dcba"},
        {"to the top", "a^", "adcb"},
        {"an owner to the top", "b^", "dbca"},
        {"an owned one to the top", "a^d^", "dbac"},
        {"to the bottom", "c_", "dbac"},
        {"an owned one to the bottom", "d_", "cadb"},
        {"behind another", "cb", "dbca"},
        {"not behind the owner", "da", "cdba"},
        {"topmost", "a*", "a*dcb"},
        {"topmost with what it owns", "b*", "d*b*ca"},
        {"topmost stays above", "a*c^", "a*cdb"},
        {"two topmost", "a*c*a^", "a*c*db"},
        {"topmost no longer", "a*c*a-", "c*adb"},
        {"never was topmost", "a-", "dcba"},
        {"behind one that is not topmost", "a*ac", "dcab"},
        {"bottom ends topmost", "c*c_", "dbac"},
        {"foreground", "a!", "adcb"},
        {"foreground with owned windows", "b|", "dbca"},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        const TestWindow a(TestWindow::Options{.title = L"a"}),
            b(TestWindow::Options{.title = L"b"}), c(TestWindow::Options{.title = L"c"});
        const TestWindow d(TestWindow::Options{.owner = b, .title = L"d"});
        const std::map<char, HWND> places{{'a', a},
                                          {'b', b},
                                          {'c', c},
                                          {'d', d},
                                          {'^', HWND_TOP},
                                          {'_', HWND_BOTTOM},
                                          {'*', HWND_TOPMOST},
                                          {'-', HWND_NOTOPMOST}};
        for (std::size_t at = 0; at < each.steps.size(); at += 2) {
            const HWND target = places.at(each.steps[at]);
            const char where = each.steps[at + 1];
            if (where == '!' || where == '|')
                SetForegroundWindow(where == '!' ? target : WithLowestBit(target));
            else
                SetWindowPos(target, places.at(where), 0, 0, 0, 0,
                             SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        }
        EXPECT_EQ(Stack(), each.expected);
    });
}

PLATFORM_TEST(Activation, BetweenThreadsDoesNotWait) {
    TestWindow own;
    own.Show();
    own.Forget();
    const WindowThread other({});
    EXPECT_EQ(GetForegroundWindow(), HWND{other});
    EXPECT_EQ(own.Count(WM_ACTIVATE), 0U);
    HandleWaiting();
    EXPECT_EQ(own.Count(WM_ACTIVATE), 1U);
    EXPECT_EQ(GetActiveWindow(), nullptr);
    EXPECT_TRUE(SetForegroundWindow(own));
    EXPECT_EQ(GetActiveWindow(), own.handle());
    ApiThread([&] { EXPECT_TRUE(SetForegroundWindow(other)); });
    EXPECT_EQ(GetForegroundWindow(), HWND{other});
    other.Stop();
    Sleep(10);
    HandleWaiting();
    EXPECT_EQ(GetActiveWindow(), own.handle());
}

PLATFORM_TEST(TouchRouting, AThreadThatSleepsHoldsUpItsOwnTouchesOnly) {
    int pressed = 0;
    const WindowThread other({.place = {100, 0, 200, 100}},
                             On(WM_LBUTTONDOWN, [&](HWND, WPARAM) { return ++pressed; }));
    TestWindow own;
    own.Show();
    HandleWaiting();
    window::TouchScreen(Touch::kDown, 10, 10);
    for (int x = 11; x < 50; ++x)
        window::TouchScreen(Touch::kMove, x, 10);
    window::TouchScreen(Touch::kDown, 110, 10);
    Sleep(100);
    EXPECT_EQ(pressed, 1);
    const Numbers all{WM_LBUTTONDOWN, WM_MOUSEMOVE};
    EXPECT_EQ(own.Order(all), Numbers());
    HandleWaiting();
    EXPECT_EQ(own.Order(all), all) << "moves that nobody fetched are one";
}

}  // namespace
}  // namespace tests
