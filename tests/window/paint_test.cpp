#include "platform/gdi/device_context.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

// A shown window that paints by BeginPaint and keeps what it was told.
class Painter : public TestWindow {
  public:
    explicit Painter(
        std::function<void()> while_painting = [] {}, LRESULT erased = 1)
        : TestWindow([=, this](HWND handle, UINT message, WPARAM, LPARAM) {
              if (message != WM_PAINT)
                  return message == WM_ERASEBKGND ? std::optional(erased) : std::nullopt;
              PAINTSTRUCT paint{};
              BeginPaint(handle, &paint);
              painted.push_back(paint.rcPaint);
              left_to_erase = paint.fErase;
              while_painting();
              EXPECT_TRUE(EndPaint(handle, &paint));
              return std::optional(LRESULT{0});
          }) {
        Show();
    }

    std::vector<RECT> painted;
    BOOL left_to_erase = FALSE;
};

TEST(Paint, CoversWhatWasInvalidatedAndNotValidated) {
    const auto hide = [](HWND h) { ShowWindow(h, SW_HIDE); };
    const auto show = [](HWND h) { ShowWindow(h, SW_SHOW); };
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
        {"hidden", {hide, all}, {}},
        {"shown again", {hide, show}, {0, 0, 100, 100}},
        {"larger", {[](HWND h) { MoveWindow(h, 0, 0, 120, 80, TRUE); }}, {0, 0, 120, 80}},
        {"moved alone", {[](HWND h) { MoveWindow(h, 7, 7, 100, 100, TRUE); }}, {}},
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
    const struct {
        const char* name;
        BOOL asked;
        LRESULT answer;
        Numbers seen;
    } cases[] = {{"not asked", FALSE, 1, {WM_PAINT}},
                 {"done", TRUE, 1, {WM_PAINT, WM_ERASEBKGND}},
                 {"left to the painting", TRUE, 0, {WM_PAINT, WM_ERASEBKGND}}};
    OnPlatformForEach(cases, [](const auto& each) {
        Painter target([] {}, each.answer);
        HandleWaiting();
        target.Forget();
        InvalidateRect(target, NULL, each.asked);
        UpdateWindow(target);
        EXPECT_EQ(target.left_to_erase, each.answer == 0);
        UpdateWindow(target);
        HandleWaiting();
        EXPECT_EQ(target.Order({WM_ERASEBKGND, WM_PAINT}), each.seen);
    });
}

}  // namespace
}  // namespace tests
