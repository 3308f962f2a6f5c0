#include <gtest/gtest.h>

#include <atomic>

#include "platform/window/screen.h"
#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

namespace window = platform::window;

constexpr UINT kPosted = WM_USER + 1;
constexpr UINT kSent = WM_USER + 2;

std::optional<LRESULT> Validate(HWND handle, UINT message, WPARAM, LPARAM) {
    if (message != WM_PAINT)
        return std::nullopt;
    ValidateRect(handle, NULL);
    return 0;
}

TEST(Retrieval, SentBeforePostedBeforeQuitBeforeTouchBeforeTimerBeforePaint) {
    Platform platform;
    platform.Run([] {
        TestWindow target(Validate);
        target.Show();
        HandleWaiting();
        target.Forget();

        InvalidateRect(target, NULL, FALSE);
        SetTimer(target, 1, 10, NULL);
        Sleep(10);
        window::TouchScreen(window::Touch::kDown, 5, 5);
        PostQuitMessage(7);
        PostMessageW(target, kPosted, 0, 0);
        const ApiThread peer([&] { SendMessageW(target, kSent, 0, 0); });
        Sleep(1);

        std::vector<UINT> fetched;
        MSG message{};
        for (int count = 0; count < 5; ++count) {
            const BOOL more = GetMessageW(&message, NULL, 0, 0);
            fetched.push_back(message.message);
            EXPECT_EQ(more, message.message != WM_QUIT);
            if (message.message == WM_QUIT) {
                EXPECT_EQ(message.wParam, 7U);
            }
            DispatchMessageW(&message);
        }
        EXPECT_EQ(fetched,
                  (std::vector<UINT>{kPosted, WM_QUIT, WM_LBUTTONDOWN, WM_TIMER, WM_PAINT}));
        EXPECT_EQ(target.Order({kSent, kPosted}), (std::vector<UINT>{kSent, kPosted}));
    });
}

TEST(Retrieval, AFilterTakesWhatItNamesAndLeavesTheRestInOrder) {
    struct Case {
        const char* name;
        bool of_first;
        UINT lowest;
        UINT highest;
        WPARAM expected;
    };
    // Waiting are, in order: first 1, second 2, first 3 (another number), thread 4.
    const Case cases[] = {
        {"everything", false, 0, 0, 1},
        {"a number", false, kSent, kSent, 3},
        {"a range", false, kPosted, kSent, 1},
        {"nothing in range", false, WM_APP, WM_APP + 1, 0},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            const TestWindow first;
            const TestWindow second;
            PostMessageW(first, kPosted, 1, 0);
            PostMessageW(second, kPosted, 2, 0);
            PostMessageW(first, kSent, 3, 0);
            PostThreadMessageW(GetCurrentThreadId(), kPosted, 4, 0);
            MSG message{};
            PeekMessageW(&message, NULL, each.lowest, each.highest, PM_REMOVE);
            EXPECT_EQ(message.wParam, each.expected);
            message = {};
            PeekMessageW(&message, second, 0, 0, PM_REMOVE);
            EXPECT_EQ(message.wParam, 2U);
            const HWND thread_alone = reinterpret_cast<HWND>(INT_PTR{-1});
            EXPECT_TRUE(PeekMessageW(&message, thread_alone, 0, 0, PM_REMOVE));
            EXPECT_EQ(message.wParam, 4U);
            EXPECT_EQ(message.hwnd, nullptr);
        });
    }
}

TEST(Retrieval, PeekingWithoutRemovingLeavesTheMessage) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        PostMessageW(target, kPosted, 9, 8);
        MSG message{};
        for (const UINT flags : {PM_NOREMOVE, PM_NOREMOVE, PM_REMOVE}) {
            message = {};
            EXPECT_TRUE(PeekMessageW(&message, NULL, 0, 0, flags));
            EXPECT_EQ(message.wParam, 9U);
            EXPECT_EQ(message.lParam, 8);
            EXPECT_EQ(message.hwnd, target.handle());
        }
        EXPECT_FALSE(PeekMessageW(&message, NULL, 0, 0, PM_REMOVE));
    });
}

TEST(Retrieval, AStaleFilterWindowIsAnErrorAlsoWhileWaiting) {
    Platform platform;
    platform.Run([] {
        MSG message{};
        const HWND never = reinterpret_cast<HWND>(UINT_PTR{0x1234});
        EXPECT_EQ(GetMessageW(&message, never, 0, 0), -1);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);

        const TestWindow target([](HWND handle, UINT number, WPARAM, LPARAM) {
            if (number == kSent)
                DestroyWindow(handle);
            return std::optional<LRESULT>();
        });
        const ApiThread peer([&] {
            Sleep(50);
            SendMessageW(target, kSent, 0, 0);
        });
        EXPECT_EQ(GetMessageW(&message, target, 0, 0), -1);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    });
}

TEST(Retrieval, AWindowThatNeverValidatesIsAskedAgainWhileTimePasses) {
    Platform platform;
    platform.Run([] {
        TestWindow target([](HWND, UINT message, WPARAM, LPARAM) {
            return message == WM_PAINT ? std::optional<LRESULT>(0) : std::nullopt;
        });
        target.Show();
        SetTimer(target, 1, 100, NULL);
        MSG message{};
        do {
            GetMessageW(&message, NULL, 0, 0);
            DispatchMessageW(&message);
        } while (message.message != WM_TIMER);
        EXPECT_GE(target.Count(WM_PAINT), 2U);
    });
}

TEST(Posting, ToNoWindowAndToAFullQueueFails) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        EXPECT_FALSE(PostMessageW(reinterpret_cast<HWND>(UINT_PTR{0x5678}), kPosted, 0, 0));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
        EXPECT_FALSE(PostThreadMessageW(0xFFFFFFF0, kPosted, 0, 0));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);

        int taken = 0;
        while (taken < 20000 && PostMessageW(target, kPosted, 0, 0))
            ++taken;
        EXPECT_EQ(taken, 10000);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
        MSG message{};
        EXPECT_TRUE(PeekMessageW(&message, NULL, 0, 0, PM_REMOVE));
        EXPECT_TRUE(PostMessageW(target, kPosted, 0, 0));
    });
}

TEST(Posting, AThreadMessageWakesItsThreadAndQuitEndsItsLoop) {
    Platform platform;
    platform.Run([] {
        std::atomic<int> exit_code{0};
        const ApiThread peer([&] {
            MSG message{};
            PeekMessageW(&message, NULL, 0, 0, PM_NOREMOVE);
            while (GetMessageW(&message, NULL, 0, 0) > 0)
                if (message.message == kPosted)
                    PostQuitMessage(static_cast<int>(message.wParam));
            exit_code = static_cast<int>(message.wParam);
        });
        Sleep(20);
        EXPECT_TRUE(PostThreadMessageW(peer.id(), kPosted, 42, 0));
        WaitForSingleObject(peer.handle(), INFINITE);
        EXPECT_EQ(exit_code, 42);
    });
}

TEST(Waiting, WakesForItsKindsOfMessagesAndForHandles) {
    struct Case {
        const char* name;
        DWORD mask;
        DWORD expected;  // without a signalled event
        std::function<void(HWND)> cause;
    };
    const Case cases[] = {
        {"posted", QS_POSTMESSAGE, WAIT_OBJECT_0 + 1,
         [](HWND target) { PostMessageW(target, kPosted, 0, 0); }},
        {"posted, only sent wanted", QS_SENDMESSAGE, WAIT_TIMEOUT,
         [](HWND target) { PostMessageW(target, kPosted, 0, 0); }},
        {"sent", QS_SENDMESSAGE, WAIT_OBJECT_0 + 1,
         [](HWND target) { SendNotifyMessageW(target, kSent, 0, 0); }},
        {"timer", QS_ALLINPUT, WAIT_OBJECT_0 + 1,
         [](HWND target) { SetTimer(target, 1, 10, NULL); }},
        {"timer, not wanted", QS_ALLINPUT & ~QS_TIMER, WAIT_TIMEOUT,
         [](HWND target) { SetTimer(target, 1, 10, NULL); }},
        {"touch", QS_INPUT, WAIT_OBJECT_0 + 1,
         [](HWND) { window::TouchScreen(window::Touch::kUp, 5, 5); }},
        {"paint", QS_PAINT, WAIT_OBJECT_0 + 1,
         [](HWND target) { InvalidateRect(target, NULL, FALSE); }},
        {"nothing", QS_ALLINPUT, WAIT_TIMEOUT, [](HWND) {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            TestWindow target(Validate);
            target.Show();
            HandleWaiting();
            const HANDLE event = CreateEventW(NULL, FALSE, FALSE, NULL);
            const ApiThread peer([&] {
                Sleep(20);
                each.cause(target);
            });
            EXPECT_EQ(MsgWaitForMultipleObjects(1, &event, FALSE, 200, each.mask), each.expected);
            SetEvent(event);
            EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &event, 200, each.mask, 0), WAIT_OBJECT_0);
            CloseHandle(event);
            HandleWaiting();
        });
    }
}

TEST(Waiting, ForAllAndForBadHandlesFails) {
    Platform platform;
    platform.Run([] {
        const HANDLE bad = reinterpret_cast<HANDLE>(UINT_PTR{0x4321});
        EXPECT_EQ(MsgWaitForMultipleObjects(1, &bad, FALSE, 0, QS_ALLINPUT), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(MsgWaitForMultipleObjects(0, NULL, TRUE, 0, QS_ALLINPUT), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(MsgWaitForMultipleObjects(0, NULL, FALSE, 30, QS_ALLINPUT), WAIT_TIMEOUT);
    });
}

}  // namespace
}  // namespace tests
