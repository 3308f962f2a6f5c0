#include "platform/gdi/device_context.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

// A shown window that paints by BeginPaint and keeps what it was told.
class Painter : public TestWindow {
  public:
    explicit Painter(LRESULT erased = 1, DWORD takes = 0)
        : TestWindow([=, this](HWND handle, UINT message, WPARAM) {
              if (message != WM_PAINT)
                  return message == WM_ERASEBKGND ? std::optional(erased) : std::nullopt;
              PAINTSTRUCT paint{};
              BeginPaint(handle, &paint);
              painted.push_back(paint.rcPaint);
              left_to_erase = paint.fErase;
              Sleep(takes);
              EXPECT_TRUE(EndPaint(handle, &paint));
              return std::optional(LRESULT{0});
          }) {
        Show();
    }

    std::vector<RECT> painted;
    BOOL left_to_erase = FALSE;
};

TEST(Paint, CoversWhatWasInvalidatedAndNotValidated) {
    const auto show = [](int how) { return [=](HWND h) { ShowWindow(h, how); }; };
    const auto move = [](int x, int cx, int cy) {
        return [=](HWND h) { SetWindowPos(h, NULL, x, 0, cx, cy, SWP_NOZORDER); };
    };
    const auto all = [](HWND h) { InvalidateRect(h, NULL, FALSE); };
    const auto add = [](const RECT& part) {
        return [=](HWND h) { InvalidateRect(h, &part, FALSE); };
    };
    const auto remove = [](const RECT& part) { return [=](HWND h) { ValidateRect(h, &part); }; };
    const struct {
        const char* name;
        std::vector<std::function<void(HWND)>> steps;
        RECT expected;  // empty: no paint
    } cases[] = {
        {"nothing", {}, {}},
        {"all", {all}, {0, 0, 100, 100}},
        {"a part", {add({10, 20, 30, 40})}, {10, 20, 30, 40}},
        {"their box", {add({10, 20, 30, 40}), add({50, 10, 60, 30})}, {10, 10, 60, 40}},
        {"outside", {add({200, 200, 300, 300})}, {}},
        {"clipped", {add({90, 90, 200, 200})}, {90, 90, 100, 100}},
        {"validated", {all, [](HWND h) { ValidateRect(h, NULL); }}, {}},
        {"half validated", {all, remove({0, 0, 100, 60})}, {0, 60, 100, 100}},
        {"a hole validated", {all, remove({10, 20, 30, 40})}, {0, 0, 100, 100}},
        {"all windows", {[=](HWND) { all(NULL); }}, {0, 0, 100, 100}},
        {"hidden", {show(SW_HIDE), all}, {}},
        {"shown again", {show(SW_HIDE), show(SW_SHOW)}, {0, 0, 100, 100}},
        {"larger", {move(0, 120, 80)}, {0, 0, 120, 80}},
        {"moved alone", {move(7, 100, 100)}, {}},
    };
    OnPlatformForEach(cases, [](const auto& each) {
        Painter target;
        HandleWaiting();
        target.painted.clear();
        for (const auto& step : each.steps)
            step(target);
        const bool paints = each.expected.right != 0;
        RECT update{};
        EXPECT_EQ(GetUpdateRect(target, &update, FALSE), paints);
        EXPECT_TRUE(EqualRect(&update, &each.expected));
        HandleWaiting();
        ASSERT_EQ(target.painted.size(), paints ? 1U : 0U);
        EXPECT_TRUE(!paints || EqualRect(&target.painted[0], &each.expected));
    });
}

PLATFORM_TEST(Paint, UpdateOfAnotherThreadReturnsAtOnceAndComesBeforeAllButSentMessages) {
    Painter target;
    HandleWaiting();
    target.Forget();
    const Numbers interesting{WM_PAINT, kPosted, kSent};
    const auto update = [&] {
        InvalidateRect(target, NULL, TRUE);
        UpdateWindow(target);
    };
    PostMessageW(target, kPosted, 0, 0);
    bool returned = false;
    const Crew peer([&] {
        update();
        returned = true;
        SendMessageW(target, kSent, 0, 0);
    });
    Sleep(100);
    EXPECT_TRUE(returned);
    EXPECT_EQ(target.Order(interesting), Numbers());
    HandleWaiting();
    EXPECT_EQ(target.Order(interesting), (Numbers{kSent, WM_PAINT, kPosted}));

    // Painted meanwhile: nothing is left of the request.
    Crew{update};
    UpdateWindow(target);
    target.Forget();
    PostMessageW(target, kPosted, 0, 0);
    HandleWaiting();
    EXPECT_EQ(target.Order(interesting), Numbers{kPosted});
}

TEST(Paint, ErasesOnlyWhenAskedAndTellsWhoIsLeftToDoIt) {
    const auto expect = [](BOOL asked, LRESULT answer, const Numbers& seen) {
        OnPlatform([&] {
            Painter target(answer);
            HandleWaiting();
            target.Forget();
            InvalidateRect(target, NULL, asked);
            UpdateWindow(target);
            EXPECT_EQ(target.left_to_erase, answer == 0);
            UpdateWindow(target);
            HandleWaiting();
            EXPECT_EQ(target.Order({WM_ERASEBKGND, WM_PAINT}), seen);
        });
    };
    expect(FALSE, 1, {WM_PAINT});
    expect(TRUE, 1, {WM_PAINT, WM_ERASEBKGND});
    expect(TRUE, 0, {WM_PAINT, WM_ERASEBKGND});
}

// Another thread asks for paintings faster than the window can paint; posted messages and timers
// have their turns between.
PLATFORM_TEST(Paint, AskedForWithoutEndLetsPostedMessagesAndTimersThrough) {
    std::atomic<bool> closed = false;
    Painter target(1, 5);
    SetTimer(target, 1, 20, NULL);
    const Crew flood([&] {
        for (int count = 0; count < 1000 && !closed; ++count) {
            InvalidateRect(target, NULL, FALSE);
            UpdateWindow(target);
            if (count == 200)
                PostMessageW(target, kPosted, 0, 0);
            Sleep(1);
        }
    });
    const DWORD start = GetTickCount();
    MSG message{};
    while (GetMessageW(&message, NULL, 0, 0) > 0 && message.message != kPosted)
        DispatchMessageW(&message);
    closed = true;
    EXPECT_LT(GetTickCount() - start, 230U);
    EXPECT_GT(target.Count(WM_TIMER), 5U);
    EXPECT_GT(target.painted.size(), 20U);
}

}  // namespace
}  // namespace tests
