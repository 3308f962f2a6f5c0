#include <gtest/gtest.h>

#include <atomic>

#include "platform/kernel/clock.h"
#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

constexpr UINT kAsk = WM_USER + 1;
constexpr UINT kAskBack = WM_USER + 2;
constexpr UINT kStop = WM_USER + 3;

// Runs a window with its own loop on a thread of its own until kStop is posted to it.
class WindowThread {
  public:
    explicit WindowThread(TestWindow::Handler handler)
        : thread_([this, handler = std::move(handler)] {
              const TestWindow target([&](HWND handle, UINT message, WPARAM wparam,
                                          LPARAM lparam) -> std::optional<LRESULT> {
                  if (message == kStop)
                      PostQuitMessage(0);
                  return handler ? handler(handle, message, wparam, lparam) : std::nullopt;
              });
              window_ = target;
              RunMessageLoop();
          }) {
        while (window_ == NULL)
            Sleep(1);
    }
    WindowThread(const WindowThread&) = delete;
    WindowThread& operator=(const WindowThread&) = delete;
    ~WindowThread() { PostMessageW(window_, kStop, 0, 0); }

    HWND window() const { return window_; }
    DWORD thread_id() const { return thread_.id(); }

  private:
    std::atomic<HWND> window_{nullptr};
    ApiThread thread_;
};

TEST(Sending, RunsOnTheWindowsThreadAndBringsItsAnswer) {
    Platform platform;
    platform.Run([] {
        DWORD own_thread = 0;
        const TestWindow own(
            [&](HWND, UINT message, WPARAM wparam, LPARAM lparam) -> std::optional<LRESULT> {
                if (message != kAsk)
                    return std::nullopt;
                own_thread = GetCurrentThreadId();
                EXPECT_FALSE(InSendMessage());
                return static_cast<LRESULT>(wparam) + lparam;
            });
        EXPECT_EQ(SendMessageW(own, kAsk, 2, 3), 5);
        EXPECT_EQ(own_thread, GetCurrentThreadId());

        std::atomic<DWORD> other_thread{0};
        const WindowThread other(
            [&](HWND, UINT message, WPARAM wparam, LPARAM) -> std::optional<LRESULT> {
                if (message != kAsk)
                    return std::nullopt;
                EXPECT_TRUE(InSendMessage());
                other_thread = GetCurrentThreadId();
                Sleep(100);
                return static_cast<LRESULT>(wparam) * 2;
            });
        EXPECT_EQ(SendMessageW(other.window(), kAsk, 21, 0), 42);
        EXPECT_EQ(other_thread, other.thread_id());
    });
}

TEST(Sending, AWaitingSenderAnswersWhatIsSentToIt) {
    Platform platform;
    platform.Run([] {
        const TestWindow own([](HWND, UINT message, WPARAM, LPARAM) {
            return message == kAskBack ? std::optional<LRESULT>(17) : std::nullopt;
        });
        const WindowThread other([&](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message != kAsk)
                return std::nullopt;
            return SendMessageW(own, kAskBack, 0, 0) + 1;
        });
        EXPECT_EQ(SendMessageW(other.window(), kAsk, 0, 0), 18);
    });
}

TEST(Sending, WhoeverWaitsForAWindowThatGoesLearnsIt) {
    struct Case {
        const char* name;
        bool destroys;  // else the thread just ends
    };
    for (const Case& each : {Case{"destroyed", true}, Case{"thread ended", false}}) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            WNDCLASSW settings{};
            settings.lpfnWndProc = DefWindowProcW;
            settings.lpszClassName = TestWindow::kClass;
            ASSERT_NE(RegisterClassW(&settings), 0);
            std::atomic<HWND> target{nullptr};
            const ApiThread peer([&] {
                const HWND made = CreateWindowExW(0, TestWindow::kClass, L"", WS_POPUP, 0, 0, 10,
                                                  10, NULL, NULL, NULL, NULL);
                target = made;
                Sleep(100);
                if (each.destroys)
                    DestroyWindow(made);
                else
                    return;
                Sleep(100);
            });
            while (target == NULL)
                Sleep(1);
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(SendMessageW(target, kAsk, 0, 0), 0);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
            EXPECT_FALSE(IsWindow(target));
        });
    }
}

TEST(Sending, ANoticeDoesNotWait) {
    Platform platform;
    platform.Run([] {
        std::atomic<int> heard{0};
        const WindowThread other([&](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message != kAsk)
                return std::nullopt;
            Sleep(1000);
            ++heard;
            return 0;
        });
        const DWORD before = GetTickCount();
        EXPECT_TRUE(SendNotifyMessageW(other.window(), kAsk, 0, 0));
        EXPECT_EQ(GetTickCount(), before);
        Sleep(2000);
        EXPECT_EQ(heard, 1);
        EXPECT_FALSE(SendNotifyMessageW(NULL, kAsk, 0, 0));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    });
}

TEST(Sending, AFloodOfNoticesToABusyThreadIsRefusedAtLast) {
    Platform platform;
    platform.Run([] {
        const TestWindow busy;
        std::atomic<int> taken{0};
        std::atomic<DWORD> error{0};
        ApiThread peer([&] {
            while (taken < 20000 && SendNotifyMessageW(busy, kAsk, 0, 0))
                ++taken;
            error = GetLastError();
        });
        peer.Join();
        EXPECT_EQ(taken, 10000);
        EXPECT_EQ(error, ERROR_NOT_ENOUGH_QUOTA);
    });
}

// A destroy handler that waits for a thread lets messages sent by that thread through.
TEST(Sending, AWaitForAThreadCanLetItsMessagesThrough) {
    Platform platform;
    platform.Run([] {
        TestWindow own([](HWND, UINT message, WPARAM, LPARAM) {
            return message == kAsk ? std::optional<LRESULT>(1) : std::nullopt;
        });
        PostMessageW(own, kAskBack, 0, 0);
        std::atomic<int> answers{0};
        ApiThread peer([&] {
            for (int count = 0; count < 50; ++count)
                answers += static_cast<int>(SendMessageW(own, kAsk, 0, 0));
        });
        const HANDLE thread = peer.handle();
        while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE) ==
               WAIT_OBJECT_0 + 1) {
            MSG message{};
            PeekMessageW(&message, NULL, 0, 0, PM_NOREMOVE);
        }
        EXPECT_EQ(answers, 50);
        EXPECT_EQ(own.Count(kAskBack), 0U);
    });
}

TEST(Sending, RepliesCrossBothWaysWithRealThreads) {
    platform::kernel::Options options;
    options.mode = platform::kernel::Mode::kFreeRunning;
    options.speed = 50;
    Platform platform(options);
    platform.Run([] {
        const TestWindow own([](HWND, UINT message, WPARAM wparam, LPARAM) {
            return message == kAskBack ? std::optional<LRESULT>(wparam) : std::nullopt;
        });
        const WindowThread other(
            [&](HWND, UINT message, WPARAM wparam, LPARAM) -> std::optional<LRESULT> {
                if (message != kAsk)
                    return std::nullopt;
                return SendMessageW(own, kAskBack, wparam, 0);
            });
        for (WPARAM count = 0; count < 200; ++count)
            ASSERT_EQ(SendMessageW(other.window(), kAsk, count, 0), static_cast<LRESULT>(count));
    });
}

}  // namespace
}  // namespace tests
