#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/window/screen.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"

namespace tests {

// Messages of the tests' own.
inline constexpr UINT kPosted = WM_USER + 1;
inline constexpr UINT kSent = WM_USER + 2;

namespace window = platform::window;
using window::Touch;
using Numbers = std::vector<UINT>;

// A window that notes what it is told and lets a handler answer. Made and destroyed on one thread.
class TestWindow {
  public:
    using Handler = std::function<std::optional<LRESULT>(HWND, UINT, WPARAM, LPARAM)>;

    struct Options {
        RECT place{0, 0, 100, 100};
        DWORD style = WS_POPUP;
        DWORD extended_style = 0;
        HWND owner = NULL;
        LPCWSTR title = L"";
    };

    static constexpr wchar_t kClass[] = L"TestWindow";

    explicit TestWindow(Handler handler = {}) : TestWindow(Options(), std::move(handler)) {}
    explicit TestWindow(const Options& options, Handler handler = {})
        : handler_(std::move(handler)) {
        WNDCLASSW settings{};
        settings.lpfnWndProc = Procedure;
        settings.lpszClassName = kClass;
        RegisterClassW(&settings);
        const RECT& place = options.place;
        handle_ = CreateWindowExW(options.extended_style, kClass, options.title, options.style,
                                  place.left, place.top, place.right - place.left,
                                  place.bottom - place.top, options.owner, NULL, NULL, this);
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() {
        if (IsWindow(handle_))
            DestroyWindow(handle_);
    }

    operator HWND() const { return handle_; }
    HWND handle() const { return handle_; }
    void Show() const { ShowWindow(handle_, SW_SHOW); }
    void Forget() { seen_.clear(); }
    const std::vector<MSG>& seen() const { return seen_; }
    std::size_t Count(UINT message) const { return Order({message}).size(); }

    // The numbers of those of `interesting` that came, in order.
    Numbers Order(const Numbers& interesting) const {
        Numbers order;
        for (const MSG& each : seen_)
            if (std::count(interesting.begin(), interesting.end(), each.message) != 0)
                order.push_back(each.message);
        return order;
    }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_NCCREATE)
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(
                                  reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams));
        auto* const self = reinterpret_cast<TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        self->seen_.push_back({window, message, wparam, lparam, 0, {}});
        if (self->handler_)
            if (const auto answer = self->handler_(window, message, wparam, lparam))
                return *answer;
        return DefWindowProcW(window, message, wparam, lparam);
    }

    Handler handler_;
    HWND handle_ = NULL;
    std::vector<MSG> seen_;
};

// A handler of one message.
inline TestWindow::Handler On(UINT number, std::function<LRESULT(HWND, WPARAM)> answer) {
    return [=](HWND handle, UINT message, WPARAM wparam, LPARAM) {
        return message == number ? std::optional(answer(handle, wparam)) : std::nullopt;
    };
}

// A thread made through the API; its end is waited for.
struct ApiThread : Crew {
    explicit ApiThread(std::function<void()> body) { Start(std::move(body)); }
};

// A window on a thread of its own, which looks after it until Stop.
class WindowThread {
  public:
    explicit WindowThread(TestWindow::Options options, TestWindow::Handler handler = {})
        : thread_([this, options, handler = std::move(handler)] {
              const TestWindow target(options, handler);
              target.Show();
              id_ = GetCurrentThreadId();
              window_ = target;
              MSG message{};
              while (GetMessageW(&message, NULL, 0, 0) > 0 && message.message != kStop)
                  DispatchMessageW(&message);
          }) {
        while (window_ == NULL)
            Sleep(1);
    }
    ~WindowThread() { Stop(); }

    void Stop() const { PostThreadMessageW(id_, kStop, 0, 0); }
    operator HWND() const { return window_; }

  private:
    static constexpr UINT kStop = WM_APP + 0x3FFF;

    std::atomic<DWORD> id_{0};
    std::atomic<HWND> window_{nullptr};
    ApiThread thread_;
};

// Handles what waits now.
inline void HandleWaiting() {
    MSG message{};
    while (PeekMessageW(&message, NULL, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

// Runs `body` on a thread of a platform of its own.
inline void OnPlatform(const std::function<void()>& body,
                       const platform::kernel::Options& options = {}) {
    Platform platform(options);
    platform.Run(body);
}

// A test that runs on a thread of a platform of its own.
#define PLATFORM_TEST(suite, name) \
    void suite##name();            \
    TEST(suite, name) {            \
        OnPlatform(suite##name);   \
    }                              \
    void suite##name()

// Runs `body` with each of the cases, each on a platform of its own.
template <class Cases, class Body>
void OnPlatformForEach(const Cases& cases, Body body) {
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        OnPlatform([&] { body(each); });
    }
}

// Expects that a call returns nothing, and with this last error.
template <class Call>
void ExpectFails(DWORD error, Call call) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(call());
    EXPECT_EQ(GetLastError(), error);
}

inline const HWND kNoWindow = reinterpret_cast<HWND>(UINT_PTR{0x1248});

}  // namespace tests
