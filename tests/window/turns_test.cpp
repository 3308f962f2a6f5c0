#include <gtest/gtest.h>

#include <atomic>

#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

// Another thread asks for paintings faster than the window can paint.
TEST(Turns, PaintingsAskedForLetPostedMessagesAndTimersThrough) {
    Platform platform;
    platform.Run([] {
        std::atomic<bool> closed = false;
        int timers = 0;
        TestWindow window([&](HWND handle, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_PAINT) {
                PAINTSTRUCT paint;
                BeginPaint(handle, &paint);
                Sleep(5);
                EndPaint(handle, &paint);
                return 0;
            }
            timers += message == WM_TIMER ? 1 : 0;
            if (message == WM_CLOSE)
                PostQuitMessage(0);
            return std::nullopt;
        });
        window.Show();
        SetTimer(window, 1, 20, nullptr);
        Crew flood([&] {
            for (int count = 0; count < 1000 && !closed; ++count) {
                InvalidateRect(window, nullptr, FALSE);
                UpdateWindow(window);
                if (count == 200)
                    PostMessageW(window, WM_CLOSE, 0, 0);
                Sleep(1);
            }
        });
        const DWORD start = GetTickCount();
        MSG message{};
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        closed = true;
        EXPECT_LT(GetTickCount() - start, 230U);
        EXPECT_GT(timers, 5);
        EXPECT_GT(window.Count(WM_PAINT), 20U);
        flood.Join();
    });
}

}  // namespace
}  // namespace tests
