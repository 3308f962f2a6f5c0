#include <gtest/gtest.h>

#include <atomic>

#include "platform/gdi/device_context.h"
#include "platform/window/screen.h"
#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

namespace window = platform::window;

constexpr UINT kPosted = WM_USER + 1;

bool operator==(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// Paints by BeginPaint and keeps what it was told.
struct Painter {
    std::vector<RECT> painted;
    std::vector<BOOL> left_to_erase;
    std::function<void(HWND)> while_painting;

    std::optional<LRESULT> operator()(HWND handle, UINT message, WPARAM, LPARAM) {
        if (message != WM_PAINT)
            return std::nullopt;
        PAINTSTRUCT paint{};
        BeginPaint(handle, &paint);
        painted.push_back(paint.rcPaint);
        left_to_erase.push_back(paint.fErase);
        if (while_painting)
            while_painting(handle);
        EXPECT_TRUE(EndPaint(handle, &paint));
        return 0;
    }
};

TEST(Paint, CoversWhatWasInvalidatedAndNotValidated) {
    struct Case {
        const char* name;
        std::function<void(HWND)> prepare;
        RECT expected;  // empty: no paint
    };
    const RECT part{10, 20, 30, 40};
    const RECT other{50, 10, 60, 30};
    const RECT outside{200, 200, 300, 300};
    const RECT across{90, 90, 200, 200};
    const RECT upper{0, 0, 100, 60};
    const Case cases[] = {
        {"nothing", [](HWND) {}, {}},
        {"all", [](HWND target) { InvalidateRect(target, NULL, FALSE); }, {0, 0, 100, 100}},
        {"a part", [&](HWND target) { InvalidateRect(target, &part, FALSE); }, part},
        {"two parts, their box",
         [&](HWND target) {
             InvalidateRect(target, &part, FALSE);
             InvalidateRect(target, &other, FALSE);
         },
         {10, 10, 60, 40}},
        {"outside", [&](HWND target) { InvalidateRect(target, &outside, FALSE); }, {}},
        {"clipped",
         [&](HWND target) { InvalidateRect(target, &across, FALSE); },
         {90, 90, 100, 100}},
        {"validated",
         [](HWND target) {
             InvalidateRect(target, NULL, FALSE);
             ValidateRect(target, NULL);
         },
         {}},
        {"half validated",
         [&](HWND target) {
             InvalidateRect(target, NULL, FALSE);
             ValidateRect(target, &upper);
         },
         {0, 60, 100, 100}},
        {"a hole validated",
         [&](HWND target) {
             InvalidateRect(target, NULL, FALSE);
             ValidateRect(target, &part);
         },
         {0, 0, 100, 100}},
        {"no window named: all windows",
         [](HWND) { InvalidateRect(NULL, NULL, FALSE); },
         {0, 0, 100, 100}},
        {"hidden",
         [](HWND target) {
             ShowWindow(target, SW_HIDE);
             InvalidateRect(target, NULL, FALSE);
         },
         {}},
        {"shown again",
         [](HWND target) {
             ShowWindow(target, SW_HIDE);
             ShowWindow(target, SW_SHOW);
         },
         {0, 0, 100, 100}},
        {"larger", [](HWND target) { MoveWindow(target, 0, 0, 120, 80, TRUE); }, {0, 0, 120, 80}},
        {"moved alone", [](HWND target) { MoveWindow(target, 7, 7, 100, 100, TRUE); }, {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            Painter painter;
            TestWindow target(std::ref(painter));
            target.Show();
            HandleWaiting();
            painter.painted.clear();
            each.prepare(target);
            RECT update{};
            EXPECT_EQ(GetUpdateRect(target, &update, FALSE), each.expected.right != 0);
            EXPECT_TRUE(update == each.expected);
            HandleWaiting();
            ASSERT_EQ(painter.painted.size(), each.expected.right != 0 ? 1U : 0U);
            if (!painter.painted.empty()) {
                EXPECT_TRUE(painter.painted[0] == each.expected);
            }
        });
    }
}

TEST(Paint, ErasesOnlyWhenAskedAndTellsWhoIsLeftToDoIt) {
    struct Case {
        const char* name;
        BOOL asked;
        LRESULT answer;
        std::size_t erased;
        BOOL left;
    };
    for (const Case& each : {Case{"not asked", FALSE, 1, 0, FALSE}, Case{"done", TRUE, 1, 1, FALSE},
                             Case{"left to the painting", TRUE, 0, 1, TRUE}}) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            Painter painter;
            TestWindow target([&](HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
                return message == WM_ERASEBKGND ? std::optional(each.answer)
                                                : painter(handle, message, wparam, lparam);
            });
            target.Show();
            HandleWaiting();
            target.Forget();
            InvalidateRect(target, NULL, each.asked);
            UpdateWindow(target);
            EXPECT_EQ(target.Count(WM_ERASEBKGND), each.erased);
            EXPECT_EQ(painter.left_to_erase.back(), each.left);
        });
    }
}

TEST(Paint, UpdateOfTheOwnThreadPaintsAtOnceButNotInVain) {
    Platform platform;
    platform.Run([] {
        Painter painter;
        TestWindow target(std::ref(painter));
        UpdateWindow(target);
        EXPECT_EQ(painter.painted.size(), 0U);
        target.Show();
        UpdateWindow(target);
        EXPECT_EQ(painter.painted.size(), 1U);
        UpdateWindow(target);
        HandleWaiting();
        EXPECT_EQ(painter.painted.size(), 1U);
    });
}

TEST(Paint, APaintingMayStartAPaintingThatHappensInsideIt) {
    Platform platform;
    platform.Run([] {
        std::vector<std::string> order;
        int depth = 0;
        Painter painter;
        painter.while_painting = [&](HWND handle) {
            const std::string name = depth == 0 ? "outer" : "inner";
            order.push_back(name + " begins");
            if (++depth == 1) {
                InvalidateRect(handle, NULL, TRUE);
                UpdateWindow(handle);
            }
            order.push_back(name + " ends");
        };
        TestWindow target(std::ref(painter));
        target.Show();
        HandleWaiting();
        EXPECT_EQ(order, (std::vector<std::string>{"outer begins", "inner begins", "inner ends",
                                                   "outer ends"}));
        EXPECT_EQ(platform::gdi::DeviceContextCount(), 0U);
    });
}

TEST(Paint, InvalidatingWhilePaintingAsksForOneMore) {
    Platform platform;
    platform.Run([] {
        Painter painter;
        painter.while_painting = [&](HWND handle) {
            if (painter.painted.size() == 1)
                InvalidateRect(handle, NULL, TRUE);
        };
        TestWindow target(std::ref(painter));
        target.Show();
        HandleWaiting();
        EXPECT_EQ(painter.painted.size(), 2U);
    });
}

TEST(Paint, UpdateOfAnotherThreadReturnsAtOnceAndComesBeforeAllButSentMessages) {
    Platform platform;
    platform.Run([] {
        Painter painter;
        TestWindow target(std::ref(painter));
        target.Show();
        HandleWaiting();
        painter.painted.clear();
        target.Forget();

        PostMessageW(target, kPosted, 0, 0);
        std::atomic<bool> returned{false};
        ApiThread peer([&] {
            InvalidateRect(target, NULL, TRUE);
            UpdateWindow(target);
            returned = true;
            SendMessageW(target, kPosted + 1, 0, 0);
        });
        // Neither sleeping nor waiting for the thread lets the paint in.
        Sleep(100);
        EXPECT_TRUE(returned);
        EXPECT_EQ(painter.painted.size(), 0U);
        HandleWaiting();
        peer.Join();
        EXPECT_EQ(target.Order({WM_PAINT, kPosted, kPosted + 1}),
                  (std::vector<UINT>{kPosted + 1, WM_PAINT, kPosted}));

        // Painted meanwhile: nothing is left of the request.
        ApiThread again([&] {
            InvalidateRect(target, NULL, TRUE);
            UpdateWindow(target);
        });
        again.Join();
        UpdateWindow(target);
        target.Forget();
        PostMessageW(target, kPosted, 0, 0);
        HandleWaiting();
        EXPECT_EQ(target.Order({WM_PAINT, kPosted}), std::vector<UINT>{kPosted});
    });
}

TEST(Paint, DeviceContextsGoWithTheirWindow) {
    Platform platform;
    platform.Run([] {
        {
            const TestWindow target;
            HDC first = GetDC(target);
            EXPECT_NE(first, nullptr);
            EXPECT_NE(GetDC(target), nullptr);
            EXPECT_EQ(platform::gdi::DeviceContextCount(), 2U);
            EXPECT_EQ(ReleaseDC(target, first), 1);
            EXPECT_EQ(ReleaseDC(target, first), 0);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        }
        EXPECT_EQ(platform::gdi::DeviceContextCount(), 0U);
        EXPECT_EQ(GetDC(NULL), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    });
}

TEST(Screen, ShowsTheVisibleWindowsFromBottomToTop) {
    Platform platform;
    platform.Run([] {
        const auto fill = [](HWND handle, COLORREF color) {
            const HDC dc = GetDC(handle);
            const HBRUSH brush = CreateSolidBrush(color);
            const RECT all{0, 0, 800, 480};
            FillRect(dc, &all, brush);
            DeleteObject(brush);
            ReleaseDC(handle, dc);
        };
        const TestWindow lower({.place = {0, 0, 200, 200}});
        const TestWindow upper({.place = {100, 100, 900, 900}});
        fill(lower, RGB(0xAA, 0, 0));
        fill(upper, RGB(0, 0xBB, 0));
        const auto pixel = [](int x, int y) {
            auto screen = window::ComposeScreen();
            return screen.row(y)[x];
        };
        EXPECT_EQ(pixel(50, 50), 0U);
        lower.Show();
        upper.Show();
        EXPECT_EQ(pixel(50, 50), 0xAA0000U);
        EXPECT_EQ(pixel(150, 150), 0x00BB00U);
        EXPECT_EQ(pixel(799, 479), 0x00BB00U);
        EXPECT_EQ(pixel(300, 50), 0U);
        SetForegroundWindow(lower);
        EXPECT_EQ(pixel(150, 150), 0xAA0000U);
        ShowWindow(lower, SW_HIDE);
        EXPECT_EQ(pixel(150, 150), 0x00BB00U);
        EXPECT_EQ(pixel(50, 50), 0U);
        // What stood there before a change of size stays.
        MoveWindow(upper, 0, 0, 300, 300, FALSE);
        EXPECT_EQ(pixel(299, 299), 0x00BB00U);
        EXPECT_EQ(pixel(300, 300), 0U);
    });
}

}  // namespace
}  // namespace tests
