#include "tests/window/test_window.h"

namespace tests {
namespace {

// A shown window that paints by BeginPaint and records its update rectangles.
class Painter : public TestWindow {
  public:
    explicit Painter(LRESULT erased = 1)
        : TestWindow([=, this](HWND handle, UINT message, WPARAM) {
              if (message != WM_PAINT)
                  return message == WM_ERASEBKGND ? std::optional(erased) : std::nullopt;
              PAINTSTRUCT paint{};
              BeginPaint(handle, &paint);
              painted.push_back(paint.rcPaint);
              left_to_erase = paint.fErase;
              Sleep(0);  // other threads run meanwhile
              EXPECT_TRUE(EndPaint(handle, &paint));
              return std::optional(LRESULT{0});
          }) {
        Show();
        HandleWaiting();
        painted.clear();
        Forget();
    }

    std::vector<RECT> painted;
    BOOL left_to_erase = FALSE;
};

void RequestPaint(HWND target) {
    InvalidateRect(target, NULL, FALSE);
    UpdateWindow(target);
}

TEST(Paint, CoversTheInvalidatedRectangle) {
    const auto show = [](int how) { return [=](HWND h) { ShowWindow(h, how); }; };
    const auto move = [](int x, int cx, int cy) {
        return [=](HWND h) { SetWindowPos(h, NULL, x, 0, cx, cy, SWP_NOZORDER); };
    };
    const auto all = [](HWND h) { InvalidateRect(h, NULL, FALSE); };
    const auto add = [](const RECT& part) {
        return [=](HWND h) { InvalidateRect(h, &part, FALSE); };
    };
    const struct {
        const char* name;
        std::vector<std::function<void(HWND)>> steps;
        RECT expected;  // empty: no paint
    } cases[] = {
        {"nothing", {}, {}},
        {"all", {all}, {0, 0, 100, 100}},
        {"two parts: their bounding box",
         {add({10, 20, 30, 40}), add({50, 10, 60, 30})},
         {10, 10, 60, 40}},
        {"outside", {add({200, 200, 300, 300})}, {}},
        {"clipped", {add({90, 90, 200, 200})}, {90, 90, 100, 100}},
        {"all windows", {[=](HWND) { all(NULL); }}, {0, 0, 100, 100}},
        {"hidden", {show(SW_HIDE), all}, {}},
        {"shown again", {show(SW_HIDE), show(SW_SHOW)}, {0, 0, 100, 100}},
        {"wider and lower", {move(0, 120, 80)}, {100, 0, 120, 80}},
        {"larger", {move(0, 120, 130)}, {0, 0, 120, 130}},
        {"smaller", {move(0, 50, 50)}, {}},
        {"moved only", {move(7, 100, 100)}, {}},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        Painter target;
        for (const auto& step : each.steps)
            step(target);
        HandleWaiting();
        const bool paints = each.expected.right != 0;
        ASSERT_EQ(target.painted.size(), paints ? 1U : 0U);
        EXPECT_TRUE(!paints || EqualRect(&target.painted[0], &each.expected));
    });
}

PLATFORM_TEST(Paint, RequestOfAnotherThreadReturnsAtOnceAndComesBeforeAllButSentMessages) {
    Painter target;
    const Numbers interesting{WM_PAINT, kPosted, kSent};
    PostMessageW(target, kPosted, 0, 0);
    bool returned = false;
    const Crew peer([&] {
        RequestPaint(target);
        returned = true;
        SendMessageW(target, kSent, 0, 0);
    });
    Sleep(100);
    EXPECT_TRUE(returned);
    EXPECT_EQ(target.Order(interesting), Numbers());
    HandleWaiting();
    EXPECT_EQ(target.Order(interesting), (Numbers{kSent, WM_PAINT, kPosted}));

    // Painted meanwhile, the window has no request left.
    Crew([&] { RequestPaint(target); });
    UpdateWindow(target);
    target.Forget();
    InvalidateRect(target, NULL, FALSE);
    PostMessageW(target, kPosted, 0, 0);
    HandleWaiting();
    EXPECT_EQ(target.Order(interesting), (Numbers{kPosted, WM_PAINT}));
}

// A window that does not validate gets WM_PAINT again, but the request counts once.
PLATFORM_TEST(Paint, RequestEndsWithItsFirstMessage) {
    TestWindow target(On(WM_PAINT, [](HWND, WPARAM) { return 0; }));
    target.Show();
    Crew([&] { RequestPaint(target); });
    for (int round = 0; round < 2; ++round) {
        PostMessageW(target, kPosted, 0, 0);
        PostMessageW(target, kPosted, 0, 0);
        HandleWaiting();
        Sleep(2);
    }
    EXPECT_EQ(target.Order({WM_PAINT, kPosted}),
              (Numbers{WM_PAINT, kPosted, kPosted, kPosted, kPosted, WM_PAINT}));
}

TEST(Paint, RequestWaitsWhenSetUntilTheWindowIsPaintedOrGone) {
    // What the window's thread does.
    const std::function<void(HWND target, HWND of_waiting_thread)> acts[] = {
        [](HWND, HWND) { HandleWaiting(); },
        [](HWND target, HWND) {
            UpdateWindow(target);
            HandleWaiting();
        },
        [](HWND target, HWND) { DestroyWindow(target); },
        [](HWND, HWND of_waiting_thread) {
            SendMessageW(of_waiting_thread, kSent, 0, 0);
            HandleWaiting();
        },
    };
    for (const auto& act : acts) {
        const auto run = [&] {
            const TestWindow own;
            HWND target = NULL;
            const DWORD start = GetTickCount();
            const Crew owner([&] {
                const Painter painter;
                target = painter;
                Sleep(100);
                act(painter, own);
                EXPECT_EQ(painter.painted.size(), StateOf(painter) ? 1U : 0U);
                Sleep(50);
            });
            Sleep(50);
            RequestPaint(target);
            EXPECT_EQ(GetTickCount() - start, 100U) << "act " << &act - acts;
        };
        OnPlatform(run, {.waiting_repaints = true});
    }
}

TEST(Paint, ErasesOnlyOnRequestAndReportsWhetherEraseIsLeft) {
    const auto expect = [](BOOL requested, LRESULT result, const Numbers& seen) {
        OnPlatform([&] {
            Painter target(result);
            InvalidateRect(target, NULL, requested);
            UpdateWindow(target);
            EXPECT_EQ(target.left_to_erase, result == 0);
            UpdateWindow(target);
            HandleWaiting();
            EXPECT_EQ(target.Order({WM_ERASEBKGND, WM_PAINT}), seen);
        });
    };
    expect(FALSE, 1, {WM_PAINT});
    expect(TRUE, 1, {WM_PAINT, WM_ERASEBKGND});
    expect(TRUE, 0, {WM_PAINT, WM_ERASEBKGND});
}

// Another thread requests a paint as soon as the window has painted; posted messages and timers
// take turns with them.
PLATFORM_TEST(Paint, FloodOfRequestsLetsPostedMessagesAndTimersThrough) {
    int paints = 0;
    const TestWindow target(On(WM_PAINT, [&](HWND handle, WPARAM) {
        if (++paints < 50)
            Crew([=] { RequestPaint(handle); });
        return 0;
    }));
    target.Show();
    SetTimer(target, 1, 10, NULL);
    Sleep(10);
    Crew([&] { RequestPaint(target); });
    PostMessageW(target, kPosted, 0, 0);
    PostMessageW(target, kPosted, 0, 0);
    HandleWaiting();
    Numbers order = target.Order({WM_PAINT, kPosted, WM_TIMER});
    order.resize(7);
    EXPECT_EQ(order, (Numbers{WM_PAINT, kPosted, WM_PAINT, kPosted, WM_PAINT, WM_TIMER, WM_PAINT}));
}

}  // namespace
}  // namespace tests
