#include <gtest/gtest.h>

#include <atomic>

#include "platform/window/screen.h"
#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

namespace window = platform::window;

// The titles from the top, topmost windows with a star.
std::string Stack() {
    std::string stack;
    for (const auto& state : window::TopLevelWindows()) {
        for (const wchar_t character : state.title)
            stack += static_cast<char>(character);
        stack += state.topmost ? "*" : "";
    }
    return stack;
}

TEST(Stacking, FollowsSetWindowPos) {
    struct Windows {
        HWND a, b, c, d;  // d is owned by b
    };
    struct Case {
        const char* name;
        std::function<void(const Windows&)> act;
        std::string expected;
    };
    constexpr UINT kStay = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE;
    const auto place = [](HWND target, HWND after) {
        SetWindowPos(target, after, 0, 0, 0, 0, kStay);
    };
    const Case cases[] = {
        {"as made", [](const Windows&) {}, "dcba"},
        {"to the top", [&](const Windows& w) { place(w.a, HWND_TOP); }, "adcb"},
        {"an owner to the top", [&](const Windows& w) { place(w.b, HWND_TOP); }, "dbca"},
        {"an owned one to the top",
         [&](const Windows& w) {
             place(w.a, HWND_TOP);
             place(w.d, HWND_TOP);
         },
         "dbac"},
        {"to the bottom", [&](const Windows& w) { place(w.c, HWND_BOTTOM); }, "dbac"},
        {"an owned one to the bottom", [&](const Windows& w) { place(w.d, HWND_BOTTOM); }, "cadb"},
        {"behind another", [&](const Windows& w) { place(w.c, w.b); }, "dbca"},
        {"not behind the owner", [&](const Windows& w) { place(w.d, w.a); }, "cdba"},
        {"topmost", [&](const Windows& w) { place(w.a, HWND_TOPMOST); }, "a*dcb"},
        {"topmost with what it owns", [&](const Windows& w) { place(w.b, HWND_TOPMOST); },
         "d*b*ca"},
        {"topmost stays above",
         [&](const Windows& w) {
             place(w.a, HWND_TOPMOST);
             place(w.c, HWND_TOP);
         },
         "a*cdb"},
        {"two topmost",
         [&](const Windows& w) {
             place(w.a, HWND_TOPMOST);
             place(w.c, HWND_TOPMOST);
             place(w.a, HWND_TOP);
         },
         "a*c*db"},
        {"topmost no longer",
         [&](const Windows& w) {
             place(w.a, HWND_TOPMOST);
             place(w.c, HWND_TOPMOST);
             place(w.a, HWND_NOTOPMOST);
         },
         "c*adb"},
        {"never was topmost", [&](const Windows& w) { place(w.a, HWND_NOTOPMOST); }, "dcba"},
        {"behind one that is not topmost",
         [&](const Windows& w) {
             place(w.a, HWND_TOPMOST);
             place(w.a, w.c);
         },
         "dcab"},
        {"bottom ends topmost",
         [&](const Windows& w) {
             place(w.c, HWND_TOPMOST);
             place(w.c, HWND_BOTTOM);
         },
         "dbac"},
        {"foreground", [](const Windows& w) { SetForegroundWindow(w.a); }, "adcb"},
        {"foreground with owned windows",
         [](const Windows& w) {
             SetForegroundWindow(reinterpret_cast<HWND>(reinterpret_cast<UINT_PTR>(w.b) | 1));
         },
         "dbca"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            const TestWindow a({.title = L"a"});
            const TestWindow b({.title = L"b"});
            const TestWindow c({.title = L"c"});
            const TestWindow d({.owner = b, .title = L"d"});
            each.act({a, b, c, d});
            EXPECT_EQ(Stack(), each.expected);
        });
    }
}

TEST(Stacking, RefusesWhatIsNoPlace) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        const HWND stale = reinterpret_cast<HWND>(UINT_PTR{0x1248});
        EXPECT_FALSE(SetWindowPos(target, stale, 0, 0, 10, 10, 0));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
        for (const auto& [x, cx] : {std::pair(100000, 10), std::pair(0, 1000000)}) {
            EXPECT_FALSE(SetWindowPos(target, HWND_TOP, x, 0, cx, 10, 0));
            EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        }
        EXPECT_FALSE(ShowWindow(target, SW_MINIMIZE));
        EXPECT_EQ(GetLastError(), ERROR_CALL_NOT_IMPLEMENTED);
    });
}

TEST(Positioning, TellsTheWindowWhatChanged) {
    struct Case {
        const char* name;
        RECT place;
        UINT flags;
        std::vector<UINT> expected;
    };
    const std::vector<UINT> both{WM_WINDOWPOSCHANGED, WM_MOVE, WM_SIZE};
    const Case cases[] = {
        {"moved and sized", {5, 6, 55, 66}, SWP_NOZORDER, both},
        {"moved", {5, 6, 105, 106}, SWP_NOZORDER, {WM_WINDOWPOSCHANGED, WM_MOVE}},
        {"sized", {0, 0, 50, 60}, SWP_NOZORDER, {WM_WINDOWPOSCHANGED, WM_SIZE}},
        {"the same", {0, 0, 100, 100}, SWP_NOZORDER, {}},
        {"neither wanted", {5, 6, 55, 66}, SWP_NOZORDER | SWP_NOMOVE | SWP_NOSIZE, {}},
        {"order alone", {0, 0, 100, 100}, 0, {WM_WINDOWPOSCHANGED}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            TestWindow target;
            target.Forget();
            const RECT& place = each.place;
            EXPECT_TRUE(SetWindowPos(target, HWND_TOP, place.left, place.top,
                                     place.right - place.left, place.bottom - place.top,
                                     each.flags));
            EXPECT_EQ(target.Order(both), each.expected);
            for (const Seen& seen : target.seen()) {
                if (seen.message == WM_MOVE) {
                    EXPECT_EQ(seen.lparam, MAKELPARAM(place.left, place.top));
                }
                if (seen.message == WM_SIZE) {
                    EXPECT_EQ(seen.lparam,
                              MAKELPARAM(place.right - place.left, place.bottom - place.top));
                }
            }
        });
    }
}

TEST(Positioning, OfAnotherThreadsWindowDoesNotWait) {
    Platform platform;
    platform.Run([] {
        TestWindow task_bar({.extended_style = WS_EX_TOPMOST});
        task_bar.Forget();
        ApiThread peer([&] {
            EXPECT_TRUE(SetWindowPos(task_bar, HWND_NOTOPMOST, 0, 0, 0, 0,
                                     SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE));
            EXPECT_FALSE(window::TopLevelWindows()[0].topmost);
        });
        peer.Join();
        EXPECT_EQ(task_bar.Count(WM_WINDOWPOSCHANGED), 0U);
        HandleWaiting();
        EXPECT_EQ(task_bar.Count(WM_WINDOWPOSCHANGED), 1U);
    });
}

TEST(Activation, MovesWithShowingHidingAndDestroying) {
    Platform platform;
    platform.Run([] {
        const std::vector<UINT> interesting{WM_ACTIVATE, WM_SETFOCUS, WM_KILLFOCUS};
        TestWindow first;
        first.Show();
        EXPECT_EQ(GetActiveWindow(), first.handle());
        TestWindow second;
        first.Forget();
        second.Show();
        EXPECT_EQ(GetActiveWindow(), second.handle());
        EXPECT_EQ(GetForegroundWindow(), second.handle());
        EXPECT_EQ(GetFocus(), second.handle());
        EXPECT_EQ(first.Order(interesting), (std::vector<UINT>{WM_ACTIVATE, WM_KILLFOCUS}));
        EXPECT_EQ(first.seen()[0].wparam, WA_INACTIVE);
        EXPECT_EQ(second.Order(interesting), (std::vector<UINT>{WM_ACTIVATE, WM_SETFOCUS}));

        ShowWindow(second, SW_HIDE);
        EXPECT_EQ(GetActiveWindow(), first.handle());
        ShowWindow(second, SW_SHOWNA);
        EXPECT_EQ(GetActiveWindow(), first.handle());
        EXPECT_EQ(SetActiveWindow(second), first.handle());
        DestroyWindow(second);
        EXPECT_EQ(GetForegroundWindow(), first.handle());
        EXPECT_EQ(GetFocus(), first.handle());
        EnableWindow(first, FALSE);
        EXPECT_EQ(GetFocus(), nullptr);
        DestroyWindow(first);
        EXPECT_EQ(GetActiveWindow(), nullptr);
        EXPECT_EQ(GetForegroundWindow(), nullptr);
    });
}

TEST(Activation, BetweenThreadsDoesNotWait) {
    Platform platform;
    platform.Run([] {
        TestWindow own;
        own.Show();
        own.Forget();
        std::atomic<bool> shown{false};
        std::atomic<bool> leave{false};
        ApiThread peer([&] {
            const TestWindow other;
            other.Show();
            EXPECT_EQ(GetActiveWindow(), other.handle());
            shown = true;
            while (!leave) {
                HandleWaiting();
                Sleep(1);
            }
            EXPECT_EQ(GetActiveWindow(), nullptr);
            EXPECT_TRUE(SetForegroundWindow(other));
            EXPECT_EQ(GetForegroundWindow(), other.handle());
        });
        while (!shown)
            Sleep(1);
        EXPECT_EQ(own.Count(WM_ACTIVATE), 0U);
        HandleWaiting();
        EXPECT_EQ(own.Count(WM_ACTIVATE), 1U);
        EXPECT_EQ(GetActiveWindow(), nullptr);
        EXPECT_TRUE(SetForegroundWindow(own));
        EXPECT_EQ(GetActiveWindow(), own.handle());
        Sleep(10);
        leave = true;
        peer.Join();
        HandleWaiting();
        EXPECT_EQ(GetActiveWindow(), own.handle());
    });
}

TEST(TouchRouting, GoesToTheTopmostVisibleWindowUnlessItIsDisabled) {
    struct Case {
        const char* name;
        int x;
        int y;
        std::function<void(HWND upper)> prepare;
        std::string expected;
        LPARAM position;
    };
    const auto nothing = [](HWND) {};
    const auto disable = [](HWND upper) { EnableWindow(upper, FALSE); };
    const auto hide = [](HWND upper) { ShowWindow(upper, SW_HIDE); };
    const Case cases[] = {
        {"lower alone", 10, 20, nothing, "lower", MAKELPARAM(10, 20)},
        {"both", 120, 130, nothing, "upper", MAKELPARAM(20, 30)},
        {"upper's last pixel", 299, 299, nothing, "upper", MAKELPARAM(199, 199)},
        {"beside upper", 300, 299, nothing, "", 0},
        {"upper disabled", 120, 130, disable, "", 0},
        {"upper hidden", 120, 130, hide, "lower", MAKELPARAM(120, 130)},
        {"off the screen", -1, 20, nothing, "", 0},
        {"below the screen", 10, 480, nothing, "", 0},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            TestWindow lower({.place = {0, 0, 200, 200}});
            lower.Show();
            TestWindow upper({.place = {100, 100, 300, 300}});
            upper.Show();
            each.prepare(upper);
            HandleWaiting();
            window::TouchScreen(window::Touch::kDown, each.x, each.y);
            window::TouchScreen(window::Touch::kMove, each.x, each.y);
            window::TouchScreen(window::Touch::kUp, each.x, each.y);
            lower.Forget();
            upper.Forget();
            HandleWaiting();
            const std::vector<UINT> all{WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP};
            EXPECT_EQ(lower.Order(all), each.expected == "lower" ? all : std::vector<UINT>());
            EXPECT_EQ(upper.Order(all), each.expected == "upper" ? all : std::vector<UINT>());
            for (const TestWindow* target : {&lower, &upper})
                for (const Seen& seen : target->seen())
                    if (seen.message == WM_LBUTTONDOWN) {
                        EXPECT_EQ(seen.lparam, each.position);
                        EXPECT_EQ(seen.wparam, MK_LBUTTON);
                    }
            if (each.expected == "lower" && IsWindowVisible(upper)) {
                EXPECT_EQ(GetForegroundWindow(), lower.handle());
            }
        });
    }
}

TEST(TouchRouting, MovesThatNobodyFetchedAreOne) {
    Platform platform;
    platform.Run([] {
        TestWindow target;
        target.Show();
        HandleWaiting();
        window::TouchScreen(window::Touch::kDown, 1, 1);
        for (int x = 2; x < 50; ++x)
            window::TouchScreen(window::Touch::kMove, x, 1);
        window::TouchScreen(window::Touch::kUp, 50, 1);
        target.Forget();
        HandleWaiting();
        ASSERT_EQ(target.Count(WM_MOUSEMOVE), 1U);
        EXPECT_EQ(target.Count(WM_LBUTTONUP), 1U);
    });
}

TEST(TouchRouting, AThreadThatSleepsHoldsUpItsOwnTouchesOnly) {
    Platform platform;
    platform.Run([] {
        std::atomic<int> pressed{0};
        std::atomic<bool> ready{false};
        const ApiThread peer([&] {
            const TestWindow other({.place = {100, 0, 200, 100}},
                                   [&](HWND, UINT message, WPARAM, LPARAM) {
                                       if (message == WM_LBUTTONDOWN)
                                           ++pressed;
                                       if (message == WM_LBUTTONUP)
                                           PostQuitMessage(0);
                                       return std::optional<LRESULT>();
                                   });
            other.Show();
            ready = true;
            RunMessageLoop();
        });
        while (!ready)
            Sleep(1);
        TestWindow own;
        own.Show();
        HandleWaiting();
        window::TouchScreen(window::Touch::kDown, 10, 10);
        window::TouchScreen(window::Touch::kDown, 110, 10);
        Sleep(100);
        EXPECT_EQ(pressed, 1);
        EXPECT_EQ(own.Count(WM_LBUTTONDOWN), 0U);
        window::TouchScreen(window::Touch::kUp, 110, 10);
        HandleWaiting();
        EXPECT_EQ(own.Count(WM_LBUTTONDOWN), 1U);
    });
}

}  // namespace
}  // namespace tests
