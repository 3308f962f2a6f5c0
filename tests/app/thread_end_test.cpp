#include "app/thread/ThreadEnd.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "platform/kernel/call_faults.h"
#include "tests/support/platform_fixture.h"

namespace tests {
namespace {

constexpr UINT kSent = WM_USER + 1;
constexpr UINT kPosted = WM_USER + 2;

std::vector<UINT> g_seen;

// Sends to the window of the thread that waits, which must answer, and posts to it, which must stay
// in its queue.
DWORD WINAPI SendAndPost(LPVOID parameter) {
    const auto window = static_cast<HWND>(parameter);
    Sleep(50);
    g_seen.clear();
    PostMessageW(window, kPosted, 0, 0);
    InvalidateRect(window, nullptr, TRUE);
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(SendMessageW(window, kSent, 0, 0), 42);
        Sleep(20);
    }
    return 0;
}

// Also when the wait itself fails for a while.
TEST(WaitForThreadEnd, DispatchesSentMessagesAndNothingElse) {
    for (const std::uint64_t works : {1000U, 0U}) {
        Platform platform;
        platform::kernel::AddCallFault(
            {.call = "MsgWaitForMultipleObjects", .skip = works, .times = 3});
        platform.Run([] {
            WNDCLASSW settings{};
            settings.lpfnWndProc = [](HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
                g_seen.push_back(message);
                return message == kSent ? 42 : DefWindowProcW(window, message, wparam, lparam);
            };
            settings.lpszClassName = L"Waiting";
            RegisterClassW(&settings);
            const HWND window = CreateWindowExW(0, L"Waiting", L"", WS_VISIBLE, 0, 0, 100, 100,
                                                nullptr, nullptr, nullptr, nullptr);
            SetTimer(window, 9, 10, nullptr);
            const HANDLE thread = CreateThread(nullptr, 0, SendAndPost, window, 0, nullptr);
            EXPECT_TRUE(WaitForThreadEnd(thread, kThreadEndLimit));
            EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
            EXPECT_EQ(g_seen, (std::vector<UINT>{kSent, kSent}));
            MSG message{};
            EXPECT_TRUE(PeekMessageW(&message, window, kPosted, kPosted, PM_REMOVE));
            CloseHandle(thread);
            DestroyWindow(window);
        });
    }
}

TEST(WaitForThreadEnd, GivesUpAtItsLimit) {
    for (const char* const failing : {"none", "MsgWaitForMultipleObjects", "WaitForSingleObject"}) {
        SCOPED_TRACE(failing);
        Platform platform;
        platform.Run([&] {
            const auto sleep = [](LPVOID) {
                Sleep(1000);
                return DWORD{0};
            };
            const HANDLE thread = CreateThread(nullptr, 0, sleep, nullptr, 0, nullptr);
            platform::kernel::AddCallFault({.call = failing, .times = platform::kernel::kForEver});
            const DWORD start = GetTickCount();
            EXPECT_FALSE(WaitForThreadEnd(thread, 500));
            EXPECT_NEAR(GetTickCount() - start, 500, 20);
            EXPECT_TRUE(WaitForThreadEnd(thread, kThreadEndLimit));
            CloseHandle(thread);
        });
    }
}

}  // namespace
}  // namespace tests
